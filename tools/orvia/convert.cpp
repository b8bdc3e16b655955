#include "commands.h"

#include <orvia/core/network.h>

#include <cstdio>

namespace OrviaTool {

int RunConvert(const ConvertOptions& options) {
    Ruvex::CountedPtr<Orvia::Network> network;
    if (int status = LoadNetwork(options.input, network)) return status;

    bool saved = false;
    if (options.relativePaths) {
        saved = network->MakeRelativePathsAndSave(options.output.c_str(), nullptr);
    } else {
        if (options.absolutePaths) network->MakeAbsolutePaths(options.searchPaths);
        saved = network->Save(options.output.c_str());
    }
    if (!saved) return Fail(options.output, "cannot write the file");
    return 0;
}

}  // namespace OrviaTool
