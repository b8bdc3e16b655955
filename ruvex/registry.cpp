// Every data class, by tag: what the base factory creates and what the format reference lists.

#include <orvia/ruvex/elements/curves.h>
#include <orvia/ruvex/elements/network.h>
#include <orvia/ruvex/elements/subnetwork.h>
#include <orvia/ruvex/schema.h>

namespace Ruvex {

namespace {

template <class T>
DataClassInfo Plain(std::string_view tag) {
    return DataClassInfo{tag, &T::StaticSchema, [] { return static_cast<Element*>(new T); }};
}

// Classes whose objects keep the tag they were created for; the creator is chosen by tag at compile time.
template <class T, const char* Tag>
DataClassInfo Tagged() {
    return DataClassInfo{Tag, &T::StaticSchema, [] { return static_cast<Element*>(new T(Tag)); }};
}

constexpr char kSZCurve[] = "SZCurve";
constexpr char kBankingCurve[] = "BankingCurve";
constexpr char kTrajectoryCurve[] = "TrajectoryCurve";
constexpr char kSZCurvatureCurve[] = "SZCurvatureCurve";
constexpr char kExternalElement[] = "ExternalElement";
constexpr char kExternalSurface[] = "ExternalSurface";
constexpr char kExternalTerrain[] = "ExternalTerrain";
constexpr char kExternalPhysicSurface[] = "ExternalPhysicSurface";
constexpr char kProxyFile[] = "ProxyFile";

}  // namespace

const std::vector<DataClassInfo>& DataClasses() {
    static const std::vector<DataClassInfo> classes = {
        Plain<SegmentElement>("Segment"),
        Plain<CircleArcElement>("CircleArc"),
        Plain<ClothoidArcElement>("ClothoArc"),
        Plain<PolyLineElement>("PolyLine"),
        Plain<ClothoidSplineElement>("ClothoidSpline"),
        Plain<PolynomialFunctionElement>("Polynomial"),
        Plain<XYCurveElement>("XYCurve"),
        Tagged<CartesianCurveElement, kSZCurve>(),
        Tagged<CartesianCurveElement, kBankingCurve>(),
        Tagged<CartesianCurveElement, kTrajectoryCurve>(),
        Tagged<CartesianCurveElement, kSZCurvatureCurve>(),
        Tagged<ExternalFileElement, kExternalElement>(),
        Tagged<ExternalFileElement, kExternalSurface>(),
        Tagged<ExternalFileElement, kExternalTerrain>(),
        Tagged<ExternalFileElement, kExternalPhysicSurface>(),
        Tagged<ExternalFileElement, kProxyFile>(),
        Plain<GeolocalisationElement>("Geolocalisation"),
        Plain<MaterialElement>("Material"),
        Plain<GeneratedTerrainMaterialElement>("GeneratedTerrainMaterial"),
        Plain<SubNetworkExitElement>("SubNetworkExit"),
        Plain<SubNetworkJunctionElement>("SubNetworkJunction"),
        Plain<RoadPieceElement>("RoadElement"),
        Plain<RoadElement>("Road"),
        Plain<SubNetworkElement>("SubNetwork"),
        Plain<NetworkElement>("Network"),
    };
    return classes;
}

}  // namespace Ruvex
