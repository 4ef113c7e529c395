// Decodes one picture with one library, out of reach of everything else: hazelmark-decoder KIND
// Only hazelmark and hazelmark-cli start it.
#include "DecoderMain.h"

#include <cstdio>
#include <string>

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

namespace {

/// The folder with the decoders, seen from this program: in the build tree as in an installation.
std::string folderOfDecoders()
{
    char path[4096];
    const ssize_t size = ::readlink("/proc/self/exe", path, sizeof path);
    const std::string program(path, size > 0 ? size_t(size) : 0);
    return program.substr(0, program.rfind('/')) + "/../lib/hazelmark";
}

bool isName(const std::string &kind)
{
    return !kind.empty() && kind.find_first_not_of("abcdefghijklmnopqrstuvwxyz0123456789") == std::string::npos;
}

} // namespace

int main(int argc, char **argv)
{
    using namespace hazelmark::glass;
    const std::string kind = argc == 2 ? argv[1] : "";
    if (!isName(kind) || ::fcntl(5, F_GETFD) < 0) {
        std::fputs("hazelmark-decoder is a part of Hazelmark, which starts it by itself.\n", stderr);
        return 2;
    }
    const std::string path = folderOfDecoders() + "/decoder-" + kind + ".so";
    void *const library = ::dlopen(path.c_str(), RTLD_NOW);
    const auto makeDecoder =
        library ? reinterpret_cast<MakeForeignDecoder>(::dlsym(library, "makeForeignDecoder")) : nullptr;
    if (!makeDecoder) {
        std::fprintf(stderr, "hazelmark-decoder: %s\n", ::dlerror());
        return kNoDecoderStatus;
    }
    return runDecoder(makeDecoder);
}
