// The smallest useful host: loads the plug-in, runs each argument as one line of keys, prints the answers.
#include <ITrellisPlugin.h>
#include <dlfcn.h>

#include <cstdio>

int main(int argc, char** argv) {
    void* library = dlopen(TARN_PLUGIN, RTLD_NOW);
    if (!library) return std::fprintf(stderr, "%s\n", dlerror()), 1;
    auto* create = reinterpret_cast<CreateInstanceFunction*>(dlsym(library, "CreateInstance"));
    auto* destroy = reinterpret_cast<DestroyInstanceFunction*>(dlsym(library, "DestroyInstance"));
    ITrellisPlugin* plugin = create(nullptr, false);
    plugin->Init();
    int exitCode = 0;
    for (int k = 1; k < argc && exitCode == 0; ++k) {
        std::string line = argv[k], output, error;
        exitCode = plugin->RunCommand(line, output, error, true);
        std::printf("%s\n", output.c_str());
    }
    plugin->DeInit();
    destroy();
    return exitCode != 0;
}
