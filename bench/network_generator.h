#pragma once

// Writes a synthetic city network: sub-networks in a row, each a grid of intersections joined by tracks whose
// axes mix segments, clothoids and circle arcs, with elevation and banking curves and two portions; junctions
// join the rows of neighbouring sub-networks, and one road per row crosses the whole city.

#include <cstdint>
#include <cstdio>
#include <string>

namespace OrviaBench {

struct CityShape {
    int subNetworks = 60;
    int grid = 20;            // intersections per side of a sub-network
    double spacingM = 100.0;  // between neighbouring intersections
};

class CityWriter {
public:
    explicit CityWriter(std::FILE* out) : out_(out) {}

    void Write(const CityShape& shape) {
        Put("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Ruvex version=\"2.5\" versionRevision=\"0\">\n");
        Put("  <Network name=\"Synthetic City\" trafficHand=\"right-hand\">\n");
        Put("    <ExternalTerrain filePath=\"terrain/city.obj\" flipped=\"false\"/>\n");
        Put("    <SubNetworks>\n");
        for (int s = 0; s < shape.subNetworks; ++s)
            SubNetwork(shape, s);
        Put("    </SubNetworks>\n    <SubNetworkJunctions>\n");
        for (int s = 0; s + 1 < shape.subNetworks; ++s)
            for (int row = 0; row < shape.grid; ++row) {
                Format("      <SubNetworkJunction name=\"J_%d_%d\" x=\"%g\" y=\"%g\" z=\"10\">\n", s, row,
                       (s + 1) * Width(shape) - 0.5 * shape.spacingM, row * shape.spacingM);
                Format("        <SubNetworkExit subNetwork=\"Q%d\" track=\"E_%d\" extremity=\"end\"/>\n", s,
                       row);
                Format("        <SubNetworkExit subNetwork=\"Q%d\" track=\"W_%d\" extremity=\"start\"/>\n",
                       s + 1, row);
                Put("      </SubNetworkJunction>\n");
            }
        Put("    </SubNetworkJunctions>\n    <Roads>\n");
        for (int row = 0; row < shape.grid; ++row) {
            Format("      <Road name=\"Row %d\" priorityLevel=\"%d\">\n", row, row % 3);
            for (int s = 0; s < shape.subNetworks; ++s) {
                if (s > 0) Piece(s, "W_" + std::to_string(row));
                for (int i = 0; i + 1 < shape.grid; ++i)
                    Piece(s, "H_" + std::to_string(i) + "_" + std::to_string(row));
                if (s + 1 < shape.subNetworks) Piece(s, "E_" + std::to_string(row));
            }
            Put("      </Road>\n");
        }
        Put("    </Roads>\n  </Network>\n</Ruvex>\n");
    }

private:
    double Width(const CityShape& shape) const { return (shape.grid + 1) * shape.spacingM; }

    // A fixed pseudo-random sequence, so that every run writes the same file.
    double Random() {
        state_ = state_ * 6364136223846793005ull + 1442695040888963407ull;
        return static_cast<double>(state_ >> 11) / 9007199254740992.0;
    }

    void Put(const char* text) { std::fputs(text, out_); }
    template <class... Args>
    void Format(const char* format, Args... args) {
        std::fprintf(out_, format, args...);
    }

    void Piece(int s, const std::string& track) {
        Format("        <RoadElement subNetwork=\"Q%d\" track=\"%s\" inverted=\"false\"/>\n", s,
               track.c_str());
    }

    void SubNetwork(const CityShape& shape, int s) {
        Format("      <SubNetwork name=\"Q%d\" x=\"%g\" y=\"%g\" z=\"0\" heading=\"%.6f\">\n", s,
               s * Width(shape), 20.0 * Random(), 0.002 * (Random() - 0.5));
        Put("        <Materials>\n");
        for (const char* m : {"Asphalt", "Paint", "Concrete"})
            Format("          <Material name=\"%s\" filePath=\"textures/%s.png\"/>\n", m, m);
        Put("        </Materials>\n        <Markings>\n");
        Put("          <Marking name=\"Dashed\" width=\"0.12\" lineLength=\"3\" totalLength=\"10\" "
            "material=\"Paint\"/>\n");
        Put("          <Marking name=\"Solid\" width=\"0.15\" lineLength=\"1\" totalLength=\"1\" "
            "material=\"Paint\"/>\n");
        Put("        </Markings>\n        <Profiles>\n");
        for (const char* p : {"Avenue", "Street", "Lane"}) {
            Format("          <Profile name=\"%s\" roadType=\"none\">\n", p);
            const double width = p[0] == 'A' ? 3.5 : (p[0] == 'S' ? 3.0 : 2.5);
            for (const char* lane : {"Walk L", "Drive L", "Drive R", "Walk R"})
                Format(
                    "            <Lane name=\"%s\" laneType=\"%s\" circulationWay=\"%s\" "
                    "material=\"Asphalt\"/>\n",
                    lane, lane[0] == 'W' ? "sidewalk" : "paved",
                    lane[6] == 'L' ? "inverse" : (lane[0] == 'W' ? "both" : "direct"));
            for (int b = -2; b <= 2; ++b)
                Format(
                    "            <LaneBorder horizDistToAxis=\"%g\" vertDistToAxis=\"%g\" "
                    "markingName=\"%s\"/>\n",
                    b * width, b == -2 || b == 2 ? 0.15 : 0.0, b == 0 ? "Dashed" : "Solid");
            Put("          </Profile>\n");
        }
        Put("        </Profiles>\n        <Intersections>\n");
        for (int j = 0; j < shape.grid; ++j)
            for (int i = 0; i < shape.grid; ++i) {
                const double x = (i + 1) * shape.spacingM;
                const double y = j * shape.spacingM;
                const double z = 10 + 5 * Random();
                Format(
                    "          <Intersection name=\"I_%d_%d\" x=\"%g\" y=\"%g\" z=\"%.3f\" altitude=\"%.3f\" "
                    "contourPoints=\"%g %g %g %g %g %g %g %g\" contourInterpolations=\"0 1 0 1\"/>\n",
                    i, j, x, y, z, z, x - 8, y - 8, x + 8, y - 8, x + 8, y + 8, x - 8, y + 8);
            }
        Put("        </Intersections>\n        <Tracks>\n");
        for (int j = 0; j < shape.grid; ++j)
            for (int i = 0; i + 1 < shape.grid; ++i)
                Track(shape, "H_" + std::to_string(i) + "_" + std::to_string(j), Node(i, j), Node(i + 1, j),
                      (i + 1) * shape.spacingM, j * shape.spacingM, 0.0);
        for (int i = 0; i < shape.grid; ++i)
            for (int j = 0; j + 1 < shape.grid; ++j)
                Track(shape, "V_" + std::to_string(i) + "_" + std::to_string(j), Node(i, j), Node(i, j + 1),
                      (i + 1) * shape.spacingM, j * shape.spacingM, 1.5707963267948966);
        for (int j = 0; j < shape.grid; ++j) {
            if (s + 1 < shape.subNetworks)
                Track(shape, "E_" + std::to_string(j), Node(shape.grid - 1, j), "",
                      shape.grid * shape.spacingM, j * shape.spacingM, 0.0);
            if (s > 0) Track(shape, "W_" + std::to_string(j), "", Node(0, j), 0.0, j * shape.spacingM, 0.0);
        }
        Put("        </Tracks>\n      </SubNetwork>\n");
    }

    static std::string Node(int i, int j) { return "I_" + std::to_string(i) + "_" + std::to_string(j); }

    void Track(const CityShape& shape, const std::string& name, const std::string& start,
               const std::string& end, double x, double y, double orientation) {
        const double length = shape.spacingM;
        const double curvature = 0.004 * (Random() - 0.5);
        const double spiral = 10 + 10 * Random();
        const double arc = 20 + 10 * Random();
        const double straight = 0.5 * (length - 2 * spiral - arc);
        const double z0 = 10 + 5 * Random();
        const double z1 = 10 + 5 * Random();
        const double zm = 0.5 * (z0 + z1) + Random() - 0.5;
        const double bank = 0.03 * (Random() - 0.5);
        Format("          <Track name=\"%s\" startIntersectionName=\"%s\" endIntersectionName=\"%s\">\n",
               name.c_str(), start.c_str(), end.c_str());
        Format("            <XYCurve x=\"%g\" y=\"%g\" orientation=\"%.12g\">\n", x, y, orientation);
        Format("              <Segment length=\"%.6f\"/>\n", straight);
        Format("              <ClothoArc length=\"%.6f\" startCurvature=\"0\" endCurvature=\"%.8f\"/>\n",
               spiral, curvature);
        Format("              <CircleArc length=\"%.6f\" curvature=\"%.8f\"/>\n", arc, curvature);
        Format("              <ClothoArc length=\"%.6f\" startCurvature=\"%.8f\" endCurvature=\"0\"/>\n",
               spiral, curvature);
        Format("              <Segment length=\"%.6f\"/>\n", straight);
        Put("            </XYCurve>\n            <SZCurve>\n");
        Format(
            "              <Polynomial xIn=\"0\" yIn=\"%.4f\" derivativeIn=\"0\" xOut=\"%g\" yOut=\"%.4f\" "
            "derivativeOut=\"%.5f\"/>\n",
            z0, 0.5 * length, zm, (z1 - z0) / length);
        Format(
            "              <Polynomial xIn=\"%g\" yIn=\"%.4f\" derivativeIn=\"%.5f\" xOut=\"%g\" "
            "yOut=\"%.4f\" "
            "derivativeOut=\"0\"/>\n",
            0.5 * length, zm, (z1 - z0) / length, length, z1);
        Put("            </SZCurve>\n            <BankingCurve>\n");
        Format(
            "              <Polynomial xIn=\"0\" yIn=\"%.5f\" derivativeIn=\"0\" xOut=\"%g\" yOut=\"%.5f\" "
            "derivativeOut=\"0\"/>\n",
            bank, length, bank);
        Put("            </BankingCurve>\n");
        Format(
            "            <Portion endDistance=\"%g\" startProfileName=\"Avenue\" "
            "endProfileName=\"Street\"/>\n",
            0.5 * length);
        Format(
            "            <Portion endDistance=\"%g\" startProfileName=\"Street\" "
            "endProfileName=\"Avenue\"/>\n",
            length);
        Put("          </Track>\n");
    }

    std::FILE* out_;
    uint64_t state_ = 0x9e3779b97f4a7c15ull;
};

// Writes the city to `path`; false when the file cannot be written.
inline bool GenerateCityNetwork(const std::string& path, const CityShape& shape = {}) {
    std::FILE* out = std::fopen(path.c_str(), "wb");
    if (!out) return false;
    CityWriter(out).Write(shape);
    return std::fclose(out) == 0;
}

}  // namespace OrviaBench
