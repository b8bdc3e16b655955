// Arbitrary bytes through the loader with the library's factory installed. Whatever loads is post-loaded
// (when it is a network), then its curves, axes and pieces are queried, and it must save; the saved text must
// load again and save to the same bytes. A query that answers NaN for finite input, or anything else that
// goes wrong, is a bug, reported by aborting.

#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/geometry/axis.h>
#include <orvia/geometry/cartesian_curve.h>
#include <orvia/geometry/curve2d.h>
#include <orvia/geometry/parametric_function.h>
#include <orvia/ruvex/factory.h>
#include <orvia/ruvex/schema.h>
#include <orvia/topology/road.h>
#include <orvia/topology/sub_network.h>
#include <orvia/vek/box.h>
#include <orvia/vek/mark.h>

#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

// Work per input is bounded so that a run makes millions of executions: the first few objects of each kind
// are queried, each at a fixed handful of places.
constexpr int kMaxCurves = 6;
constexpr int kMaxAxes = 6;
constexpr int kMaxCartesianCurves = 6;
constexpr int kMaxPieces = 12;
// Projections stop after this many Newton steps (then the safeguarded search runs).
constexpr int kProjectionIterations = 12;

[[noreturn]] void Fail(const char* what, const std::string& text) {
    std::fprintf(stderr, "%s\n", what);
    for (const Ruvex::Problem& problem : Ruvex::GetLastProblems())
        std::fprintf(stderr, "  %s\n", Ruvex::ToString(problem).c_str());
    std::fprintf(stderr, "--- text ---\n%s\n", text.c_str());
    std::abort();
}

struct Budget {
    int curves = kMaxCurves;
    int axes = kMaxAxes;
    int cartesianCurves = kMaxCartesianCurves;
    int pieces = kMaxPieces;
};

// Aborts naming the query when a result is NaN.
void Check(double value, const char* query, const char* tag, double s) {
    if (!std::isnan(value)) return;
    std::fprintf(stderr, "%s on <%s> at %.17g answered NaN\n", query, tag, s);
    std::abort();
}

void Check(const PointData& pd, const char* query, const char* tag, double s) {
    Check(pd.position.x, query, tag, s);
    Check(pd.position.y, query, tag, s);
    Check(pd.heading, query, tag, s);
    Check(pd.curvature, query, tag, s);
}

void Check(const vek::Box2& box, const char* query, const char* tag) {
    if (box.isEmpty()) return;
    Check(box.min.x + box.min.y + box.max.x + box.max.y, query, tag, 0);
}

// Abscissas inside [0, length], at its ends and beyond them.
template <class Visit>
void ForEachAbscissa(double length, Visit visit) {
    for (double s : {-25.0, 0.0, 0.37 * length, length, length + 25.0})
        visit(s);
}

void QueryPiece(const ParametricFunction& piece, const char* tag) {
    const double length = piece.GetLength();
    ForEachAbscissa(length, [&](double s) { Check(piece.GetPointData(s), "piece sample", tag, s); });
    Check(piece.GetPointData(2.5 * length), "piece sample", tag, 2.5 * length);
    Check(piece.GetBoundingBox(), "piece box", tag);
}

void QueryCurve(const Orvia::Curve2D& curve, const char* tag) {
    const double length = curve.GetLength();
    Check(length, "curve length", tag, 0);
    PointData pd;
    ForEachAbscissa(length, [&](double s) {
        for (double t : {0.0, -3.5}) {
            if (!curve.GetPointData(s, t, pd)) return;
            Check(pd, "curve sample", tag, s);
            // Projections of points beside the curve and far from it, from a start near and far.
            const vek::Vector2 p = pd.position + vek::Vector2(7, -4) * (1 + std::fabs(t));
            Check(curve.SearchNearestAbscissa(p, s, 1e-6, kProjectionIterations), "projection", tag, s);
            double foot = 0, distance = 0;
            if (curve.ComputeAbscissaDistAfter(p, foot, distance))
                Check(foot + distance, "foot after", tag, s);
            if (curve.ComputeAbscissaDistBefore(p, foot, distance))
                Check(foot + distance, "foot before", tag, s);
        }
    });
    Check(curve.SearchNearestAbscissa({1e4, -3e4}, 0, 1e-6, kProjectionIterations), "far projection", tag, 0);
    Check(curve.GetBoundingBox(), "curve box", tag);
}

void QueryCartesianCurve(const Orvia::CartesianCurve& curve, const char* tag) {
    const double lo = curve.GetXMin(), hi = curve.GetXMax();
    Check(curve.GetCurveLength(), "cartesian length", tag, 0);
    ForEachAbscissa(hi - lo, [&](double s) {
        double value = 0, slope = 0, curvature = 0;
        curve.GetData(lo + s, value, slope, curvature);
        Check(value + slope + curvature, "cartesian data", tag, lo + s);
    });
    Check(curve.GetBoundingBox(), "cartesian box", tag);
}

void QueryAxis(Orvia::Axis& axis, const char* tag) {
    const double length = axis.GetValidXYLength();
    Check(length, "axis length", tag, 0);
    ForEachAbscissa(length, [&](double s) {
        for (double t : {0.0, 2.0}) {
            vek::Vector3 position, tangent;
            double curvature = 0;
            axis.GetPositionTangentCurvature(s, {t, 0}, &position, &tangent, &curvature);
            Check(position.x + position.y + position.z, "axis position", tag, s);
            Check(tangent.x + tangent.y + tangent.z + curvature, "axis tangent", tag, s);
            vek::Mark mark;
            if (axis.GetMark(mark, s, t))
                Check(mark.position.z + mark.roll + mark.pitch + mark.yaw, "axis mark", tag, s);
            Check(axis.GetAltitude(s, t), "axis altitude", tag, s);
        }
    });
    vek::Box3 box;
    axis.GetBoundingBox(box);
    if (!box.isEmpty()) Check(box.min.x + box.min.y + box.min.z + box.max.x + box.max.y, "axis box", tag, 0);
}

// Network::PostLoad without its geolocalisation step: that one hands the projection text to the projection
// library, whose database lookups cost a hundred times the rest of an input.
void PostLoad(Ruvex::Element* root) {
    auto* network = dynamic_cast<Orvia::Network*>(root);
    if (!network) return;
    network->MakeNamesUnique();
    for (size_t i = 0; i < network->GetSubNetworkCount(); ++i)
        if (Orvia::SubNetwork* subNetwork = network->GetSubNetwork(i)) subNetwork->PostLoad(network, {});
    network->PostLoadSubNetworkJunctions();
    for (size_t i = 0; i < network->GetRoadCount(); ++i)
        if (Orvia::Road* road = network->GetRoad(i)) road->InitTracksData(i, network);
}

// Every element of the tree, children through their schema, queried while the budget lasts.
void QueryTree(Ruvex::Element* element, Budget& budget) {
    const char* tag = element->GetTagName().c_str();
    if (auto* axis = dynamic_cast<Orvia::Axis*>(element); axis && budget.axes > 0) {
        --budget.axes;
        QueryAxis(*axis, tag);
    }
    if (auto* curve = dynamic_cast<Orvia::Curve2D*>(element); curve && budget.curves > 0) {
        --budget.curves;
        QueryCurve(*curve, tag);
    }
    if (auto* curve = dynamic_cast<Orvia::CartesianCurve*>(element); curve && budget.cartesianCurves > 0) {
        --budget.cartesianCurves;
        QueryCartesianCurve(*curve, tag);
    }
    if (auto* piece = dynamic_cast<ParametricFunction*>(element); piece && budget.pieces > 0) {
        --budget.pieces;
        QueryPiece(*piece, tag);
    }
    for (const Ruvex::ChildField& field : element->GetSchema().children)
        field.forEach(*element, &budget, [](void* context, Ruvex::Element* child) {
            if (child) QueryTree(child, *static_cast<Budget*>(context));
        });
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    static const bool initialised = [] {
        Orvia::Init(Ruvex::Encoding::UTF8);
        return true;
    }();
    (void)initialised;

    // The loader reads NUL-terminated text: a NUL inside the input ends it, as it would for any caller.
    const std::string input(reinterpret_cast<const char*>(data), size);
    Ruvex::CountedPtr<Ruvex::Element> root(Ruvex::Load(input.c_str(), true));
    if (!root) return 0;
    PostLoad(root.Get());
    Budget budget;
    QueryTree(root.Get(), budget);

    const std::string first = Ruvex::SaveToString(root.Get());
    if (first.empty()) {
        // What the file held may have no form the output can take (a name with characters its encoding
        // lacks): the save refuses with an error, which is an answer. Failing without one is not.
        for (const Ruvex::Problem& problem : Ruvex::GetLastProblems())
            if (!problem.warning) return 0;
        Fail("a loaded document does not save, and says nothing", input);
    }
    Ruvex::CountedPtr<Ruvex::Element> again(Ruvex::Load(first.c_str(), true));
    if (!again) Fail("a saved document does not load", first);
    // Not post-loaded: what the first post-load changed is in the text already, and the element layer alone
    // must give that text back.
    const std::string second = Ruvex::SaveToString(again.Get());
    if (second != first) {
        std::fprintf(stderr, "--- first save ---\n%s\n", first.c_str());
        Fail("the second save differs from the first", second);
    }
    return 0;
}
