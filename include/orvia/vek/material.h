// Surface appearance carried by roads, markings and connectors.
#pragma once

#include <string>

#include <orvia/vek/color.h>

namespace vek {

struct Material {
    std::string name;
    Color diffuse{0.8f, 0.8f, 0.8f};
    Color ambient{0.2f, 0.2f, 0.2f};
    Color specular{0, 0, 0};
    Color emissive{0, 0, 0};
    float shininess = 0;      // specular exponent, >= 0
    float transparency = 0;   // 0 opaque .. 1 invisible
    std::string textureFile;  // UTF-8 path, empty without texture

    // Every field equal, name included; floats compared exactly.
    bool operator==(const Material&) const = default;
    // Same appearance under possibly different names.
    bool hasSameAppearance(const Material& o) const {
        return diffuse == o.diffuse && ambient == o.ambient && specular == o.specular &&
               emissive == o.emissive && shininess == o.shininess && transparency == o.transparency &&
               textureFile == o.textureFile;
    }
};

}  // namespace vek
