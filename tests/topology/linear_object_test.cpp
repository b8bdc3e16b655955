#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>
#include <orvia/topology/linear_object.h>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>
#include <utility>

using Orvia::LinearObject;
using Ruvex::CountedPtr;

namespace {

CountedPtr<LinearObject> LoadLinear(const std::string& linear) {
    // Loading a network first makes sure the library's types are the factory's.
    CountedPtr<Orvia::Network> network(
        Orvia::Network::Load(R"(<Ruvex version="2.5"><Network/></Ruvex>)", 0, {}));
    const std::string text = R"(<Ruvex version="2.5">)" + linear + "</Ruvex>";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text.c_str(), true));
    return CountedPtr<LinearObject>(dynamic_cast<LinearObject*>(root.Get()));
}

}  // namespace

TEST(LinearObject, AxisAndControlPoints) {
    CountedPtr<LinearObject> object =
        LoadLinear(R"(<Linear controlPoints="0 0 15 1 30 0"><XYCurve><Segment length="30"/></XYCurve>
<SZCurve><Polynomial xIn="0" yIn="2" derivativeIn="0" xOut="30" yOut="2" derivativeOut="0"/></SZCurve></Linear>)");
    ASSERT_TRUE(object);
    ASSERT_TRUE(object->Validate());
    EXPECT_DOUBLE_EQ(object->GetXYLength(), 30);
    vek::Mark mark;
    ASSERT_TRUE(object->GetMark(mark, 10, 0));
    EXPECT_NEAR(mark.position.x, 10, 1e-9);
    EXPECT_NEAR(mark.position.z, 2, 1e-9);

    vek::Vector2 point;
    ASSERT_EQ(object->GetControlPointsCount(), 3u);
    EXPECT_TRUE(object->GetControlPoint(1, point));
    EXPECT_EQ(point, vek::Vector2(15, 1));
    EXPECT_FALSE(object->GetControlPoint(3, point));
    EXPECT_EQ(object->AddControlPoint(vek::Vector2(5, 1), 1), 1u);
    EXPECT_EQ(object->AddControlPoint(vek::Vector2(40, 0)), 4u);
    EXPECT_TRUE(object->RemoveControlPoint(4));
    EXPECT_FALSE(object->RemoveControlPoint(4));
    EXPECT_TRUE(object->RemoveControlPoint(1));

    // Backwards: s = 10 now lies 20 m from the old start, and the polygon runs the other way.
    object->InvertAxis();
    ASSERT_TRUE(object->GetMark(mark, 10, 0));
    EXPECT_NEAR(mark.position.x, 20, 1e-9);
    EXPECT_TRUE(object->GetControlPoint(0, point));
    EXPECT_EQ(point, vek::Vector2(30, 0));
}

TEST(LinearObject, HostileAxesAnswerWithoutBreaking) {
    const double nan = std::numeric_limits<double>::quiet_NaN();
    // A plan piece of broken length still makes an axis; no plan piece makes none. The last two break a
    // sound length afterwards.
    const std::pair<const char*, bool> cases[] = {
        {R"(<Linear/>)", false},
        {R"(<Linear><XYCurve><Segment length="-5"/></XYCurve></Linear>)", true},
        {R"(<Linear><XYCurve><Segment length="nan"/></XYCurve></Linear>)", true},
        {R"(<Linear><XYCurve/><SZCurve/><BankingCurve/></Linear>)", false},
        {R"(<Linear><XYCurve><Segment length="30"/></XYCurve></Linear>)", true},
        {R"(<Linear><XYCurve><Segment length="30"/></XYCurve></Linear>)", true}};
    const double broken[] = {0, 0, 0, 0, nan, -3};
    size_t index = 0;
    for (const auto& [linear, valid] : cases) {
        SCOPED_TRACE(linear);
        CountedPtr<LinearObject> object = LoadLinear(linear);
        ASSERT_TRUE(object);
        if (broken[index] != 0) {
            ASSERT_TRUE(object->Validate());
            object->SetXYLength(broken[index]);
            object->Invalidate();
        }
        ++index;
        EXPECT_EQ(object->Validate(), valid);
        EXPECT_TRUE(std::isfinite(object->GetXYLength()));
        EXPECT_GE(object->GetXYLength(), 0);
        for (double s : {-1.0, 0.0, 3.0, nan, 1e308}) {
            vek::Mark mark;
            vek::Vector3 p;
            vek::Box3 box;
            object->GetMark(mark, s, 1.5);
            object->GetPosition(p, s, -1);
            object->GetAltitude(s, nan);
            object->GetBoundingBox(box);
            object->GetXYTangent(s);
        }
        object->InvertAxis();
    }
}
