#include "CarriedMetadata.h"
#include "ExifInfo.h"
#include "FuzzFile.h"
#include "PhotoFile.h"

using namespace hazelmark;

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *bytes, size_t size)
{
    const FuzzFile file(bytes, size);
    const PhotoFile photo(file.path());
    (void)photo.fields();
    (void)ExifInfo(photo.metaInfoDict()).fields();
    for (const WriteFormat format : {WriteFormat::Jpeg, WriteFormat::Png, WriteFormat::Tiff})
        (void)carriedMetadata(file.path(), {40, 30}, format);
    return 0;
}
