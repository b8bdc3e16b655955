#include <gtest/gtest.h>

#include <string>

#include <orvia/vek/math.h>

#include "axis_test_support.h"

namespace {

using Ruvex::CountedPtr;

template <class T>
CountedPtr<T> LoadAs(const std::string& version, const std::string& element) {
    const std::string text =
        "<Ruvex version=\"" + version + "\" versionRevision=\"0\">" + element + "</Ruvex>";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text.c_str(), true));
    EXPECT_TRUE(root) << (Ruvex::GetLastProblems().empty() ? text
                                                           : Ruvex::ToString(Ruvex::GetLastProblems()[0]));
    return CountedPtr<T>(dynamic_cast<T*>(root.Get()));
}

// Saves the piece, loads the text back and checks that the copy is the same piece, sampled alike, and saves
// the same text.
template <class T>
void ExpectRoundTrip(T* piece) {
    const std::string text = Ruvex::SaveToString(piece);
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text.c_str(), true));
    auto* again = dynamic_cast<T*>(root.Get());
    ASSERT_TRUE(again) << text;
    EXPECT_EQ(Ruvex::SaveToString(again), text);
    if constexpr (requires(T * p) { p->GetPointData(0.0); }) {
        EXPECT_TRUE(again->IsEqual(piece)) << text;
        for (double f : {0.0, 0.4, 1.0}) {
            const double s = f * piece->GetLength();
            EXPECT_TRUE(vek::isEqual(again->GetPointData(s).position, piece->GetPointData(s).position, 1e-12))
                << text;
        }
    } else {
        EXPECT_EQ(again->GetValue(17), piece->GetValue(17)) << text;
    }
}

}  // namespace

TEST(CurvePieces, LoadAndSaveEachPiece) {
    axis_test::ScopedOrviaFactory factory;

    CountedPtr<Segment> segment = LoadAs<Segment>("2.5", "<Segment length=\"12.5\"/>");
    ASSERT_TRUE(segment);
    EXPECT_EQ(segment->GetPointData(12.5).position, vek::Vector2(12.5, 0));
    ExpectRoundTrip(segment.Get());

    CountedPtr<CircleArc> arc = LoadAs<CircleArc>("2.5", "<CircleArc length=\"3\" curvature=\"-0.25\"/>");
    ASSERT_TRUE(arc);
    EXPECT_NEAR(arc->GetPointData(3).heading, -0.75, 1e-15);
    ExpectRoundTrip(arc.Get());
    // Defaults of an arc without attributes: length 1, curvature 1.
    CountedPtr<CircleArc> plain = LoadAs<CircleArc>("2.5", "<CircleArc/>");
    ASSERT_TRUE(plain);
    EXPECT_EQ(plain->GetLength(), 1);
    EXPECT_EQ(plain->GetCurvature(), 1);

    // Current and older documents read the same clothoid; its derived state is built either way.
    for (const char* version : {"2.5", "2.3", "2.2", "1.0"}) {
        CountedPtr<ClothoArc> clotho = LoadAs<ClothoArc>(
            version, "<ClothoArc length=\"40\" startCurvature=\"0.01\" endCurvature=\"-0.03\"/>");
        ASSERT_TRUE(clotho) << version;
        EXPECT_EQ(clotho->GetLength(), 40) << version;
        EXPECT_NEAR(clotho->GetPointData(40).curvature, -0.03, 1e-15) << version;
        EXPECT_NEAR(clotho->GetPointData(40).heading, 0.01 * 40 - 0.04 * 40 / 2, 1e-14) << version;
        ExpectRoundTrip(clotho.Get());
    }
    CountedPtr<ClothoArc> defaults = LoadAs<ClothoArc>("2.5", "<ClothoArc/>");
    ASSERT_TRUE(defaults);
    EXPECT_EQ(defaults->GetEndCurvature(), 0.01);

    for (const char* version : {"2.5", "2.1"}) {
        CountedPtr<PolyLine> line =
            LoadAs<PolyLine>(version, "<PolyLine type=\"0\" endTangent=\"0.5\" points=\"0 0 10 0 10 10\"/>");
        ASSERT_TRUE(line) << version;
        EXPECT_EQ(line->GetType(), PolyLine::EType::Polygon);
        EXPECT_EQ(line->GetLength(), 20);
        EXPECT_EQ(line->GetPointData(20).heading, 0.5);
        ExpectRoundTrip(line.Get());
    }
    // Edits reach the file.
    CountedPtr<PolyLine> spline = LoadAs<PolyLine>("2.5", "<PolyLine points=\"0 0 10 0 20 5\"/>");
    ASSERT_TRUE(spline);
    spline->AddControlPointAtEnd({30, 5});
    EXPECT_NE(Ruvex::SaveToString(spline.Get()).find("points=\"0 0 10 0 20 5 30 5\""), std::string::npos);
    ExpectRoundTrip(spline.Get());

    CountedPtr<ClothoidSpline> clothoids = LoadAs<ClothoidSpline>(
        "2.5", "<ClothoidSpline threshold=\"0.5\" symmetric=\"true\" points=\"0 0 50 0 80 40 140 40\"/>");
    ASSERT_TRUE(clothoids);
    EXPECT_EQ(clothoids->GetThreshold(), 0.5);
    EXPECT_TRUE(clothoids->GetSymmetric());
    EXPECT_LT((clothoids->GetPointData(clothoids->GetLength()).position - vek::Vector2(140, 40)).norm(),
              1e-6);
    ExpectRoundTrip(clothoids.Get());

    CountedPtr<PolynomialFunction> cubic =
        LoadAs<PolynomialFunction>("2.5",
                                   "<Polynomial xIn=\"10\" yIn=\"2\" derivativeIn=\"0.1\" xOut=\"30\" "
                                   "yOut=\"5\" derivativeOut=\"-0.2\"/>");
    ASSERT_TRUE(cubic);
    EXPECT_NEAR(cubic->GetValue(30), 5, 1e-13);
    EXPECT_NEAR(cubic->GetDerivative(10), 0.1, 1e-14);
    ExpectRoundTrip(cubic.Get());

    // A malformed number leaves the default length and a warning naming the attribute.
    CountedPtr<Segment> defaulted = LoadAs<Segment>("2.5", "<Segment length=\"long\"/>");
    ASSERT_TRUE(defaulted);
    EXPECT_EQ(defaulted->GetLength(), 1.0);
    ASSERT_EQ(Ruvex::GetLastProblems().size(), 1u);
    EXPECT_NE(Ruvex::GetLastProblems()[0].message.find("length"), std::string::npos);
}

TEST(CurvePieces, LoadRefusesNullArguments) {
    Segment segment;
    ClothoArc clotho;
    PolyLine line(1, false);
    ClothoidSpline spline;
    PolynomialFunction cubic;
    for (Ruvex::Element* element : std::initializer_list<Ruvex::Element*>{
             segment.GetElement(), clotho.GetElement(), line.GetElement(), spline.GetElement(), &cubic})
        EXPECT_FALSE(element->LoadFromXMLElement(nullptr, nullptr)) << element->GetTagName();
}
