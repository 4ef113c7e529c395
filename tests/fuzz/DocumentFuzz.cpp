#include "ExifInfo.h"
#include "FuzzFile.h"
#include "PhotoFile.h"

using namespace hazelmark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const Outcome<PhotoPtr> photo = Photo::open(fuzzFile(bytes, size));
    if (!photo)
        return 0;
    (void)PhotoFile(*photo).fields();
    (void)ExifInfo((*photo)->dictionary()).fields();
    for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff})
        (void)(*photo)->carriedMetadata({40, 30}, format);
    return 0;
}
