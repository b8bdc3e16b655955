#include "commands.h"

#include <orvia/core/geolocalisation.h>
#include <orvia/core/network.h>

#include <cstdio>

namespace OrviaTool {

int RunGeo(const GeoOptions& options) {
    Ruvex::CountedPtr<Orvia::Network> network;
    if (int status = LoadNetwork(options.file, network)) return status;
    const Orvia::Geolocalisation* geolocalisation = network->GetGeolocalisation();
    if (!geolocalisation) {
        std::fprintf(stderr, "%s: the network has no geolocalisation\n", options.file.c_str());
        return 1;
    }
    const bool toWgs84 = options.toWgs84.size() == 3;
    const std::vector<double>& in = toWgs84 ? options.toWgs84 : options.toLocal;
    const vek::Vector3 point(in[0], in[1], in[2]);
    vek::Vector3 out;
    const bool ok =
        toWgs84 ? geolocalisation->GetWgs84Coord(point, out) : geolocalisation->GetOrviaCoord(point, out);
    if (!ok) {
        std::fprintf(stderr, "%s: the point cannot be converted in the network's projection\n",
                     options.file.c_str());
        return 1;
    }
    // Degrees to 1e-9 (0.1 mm on the ground), metres to the millimetre.
    if (toWgs84)
        std::printf("%.9f %.9f %.3f\n", out.x, out.y, out.z);
    else
        std::printf("%.3f %.3f %.3f\n", out.x, out.y, out.z);
    return 0;
}

}  // namespace OrviaTool
