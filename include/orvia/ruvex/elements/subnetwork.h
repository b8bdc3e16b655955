#pragma once

// Data of a sub-network: its placement, its files and the lists of everything local to it.

#include <orvia/ruvex/elements/network.h>

namespace Ruvex {

#define RUVEX_SUB_NETWORK_TABLE(F)                                                 \
    F(XYZ, Position, "x", "y", "z", 0.0, 0.0, 0.0)                                 \
    F(ATTR, double, Heading, "heading", 0.0)                                       \
    F(CHILD, ExternalFileElement, ProxyFileElement, "ProxyFile")                   \
    F(CHILD, ExternalFileElement, TerrainElement, "ExternalTerrain")               \
    F(CHILD, ExternalFileElement, RollingSurfaceElement, "ExternalSurface")        \
    F(CHILD, ExternalFileElement, PhysicalSurfaceElement, "ExternalPhysicSurface") \
    F(NAMED_LIST_IN, MaterialElement, Materials, "Materials", "Material")

class SubNetworkElement : public NamedElement {
    RUVEX_FIELDS(SubNetworkElement, NamedElement, RUVEX_SUB_NETWORK_TABLE)
};

}  // namespace Ruvex
