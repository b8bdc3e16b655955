#include "commands.h"

#include <orvia/core/network.h>

#include <cstdio>

namespace OrviaTool {

int RunConvert(const ConvertOptions& options) {
    Ruvex::CountedPtr<Orvia::Network> network(Orvia::Network::Load(options.input.c_str(), {}));
    if (!network) return Fail(options.input, "the file holds no network");

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
