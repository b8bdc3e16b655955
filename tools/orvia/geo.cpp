#include "commands.h"

#include <orvia/core/geolocalisation.h>
#include <orvia/core/network.h>

#include <cmath>
#include <cstdio>

namespace OrviaTool {

namespace {

// Bounds of what a point on or near the Earth can be: local coordinates within its circumference of the
// origin, elevations within 100 km of the ellipsoid.
constexpr double kMaxLocalCoordinate = 4.1e7;  // metres
constexpr double kMaxElevation = 1e5;          // metres

// True when `value` lies in [-limit, limit]; otherwise prints why.
bool InRange(const std::string& file, const char* what, double value, double limit, const char* unit) {
    if (std::isfinite(value) && std::fabs(value) <= limit) return true;
    std::fprintf(stderr, "%s: %s %g is outside [-%g, %g] %s\n", file.c_str(), what, value, limit, limit,
                 unit);
    return false;
}

}  // namespace

int RunGeo(const GeoOptions& options) {
    Ruvex::CountedPtr<Orvia::Network> network;
    if (int status = LoadNetwork(options.file, network)) return status;
    const Orvia::Geolocalisation* geolocalisation = network->GetGeolocalisation();
    if (!geolocalisation) {
        std::fprintf(stderr, "%s: the network has no geolocalisation\n", options.file.c_str());
        return 1;
    }
    // Projected coordinates in metres stay within the Earth's circumference: a centre beyond makes every
    // answer meaningless.
    const vek::Vector3& centre = geolocalisation->GetCenteringVector();
    if (!(std::fabs(centre.x) <= kMaxLocalCoordinate && std::fabs(centre.y) <= kMaxLocalCoordinate &&
          std::fabs(centre.z) <= kMaxElevation)) {
        std::fprintf(stderr,
                     "%s: the network's projection is centred at (%g, %g, %g), which is no place on Earth\n",
                     options.file.c_str(), centre.x, centre.y, centre.z);
        return 1;
    }
    const bool toWgs84 = options.toWgs84.size() == 3;
    const std::vector<double>& in = toWgs84 ? options.toWgs84 : options.toLocal;
    const bool valid = toWgs84 ? InRange(options.file, "x", in[0], kMaxLocalCoordinate, "metres") &&
                                     InRange(options.file, "y", in[1], kMaxLocalCoordinate, "metres") &&
                                     InRange(options.file, "z", in[2], kMaxElevation, "metres")
                               : InRange(options.file, "latitude", in[0], 90, "degrees") &&
                                     InRange(options.file, "longitude", in[1], 180, "degrees") &&
                                     InRange(options.file, "elevation", in[2], kMaxElevation, "metres");
    if (!valid) return 1;
    const vek::Vector3 point(in[0], in[1], in[2]);
    vek::Vector3 out;
    const bool ok =
        toWgs84 ? geolocalisation->GetWgs84Coord(point, out) : geolocalisation->GetOrviaCoord(point, out);
    // A projection centred far from the Earth gives answers that are no place on it.
    const bool onEarth =
        toWgs84 ? std::fabs(out.x) <= 90 && std::fabs(out.y) <= 180 && std::fabs(out.z) <= 2 * kMaxElevation
                : std::fabs(out.x) <= kMaxLocalCoordinate && std::fabs(out.y) <= kMaxLocalCoordinate &&
                      std::fabs(out.z) <= 2 * kMaxElevation;
    if (!ok || !onEarth) {
        std::fprintf(stderr, "%s: the point cannot be converted in the network's projection%s\n",
                     options.file.c_str(), ok ? " (the result lies outside the Earth's range)" : "");
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
