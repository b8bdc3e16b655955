#include <orvia/core/library.h>
#include <orvia/ruvex/factory.h>
#include <orvia/traffic/vehicle_authorisation.h>

#include <gtest/gtest.h>

#include <string>

using namespace Orvia;
using Ruvex::CountedPtr;
using VA = VehicleAuthorisation;

TEST(VehicleAuthorisation, CategoryTexts) {
    EXPECT_EQ(VA::VehicleCategoriesToString(0x12), "bicycle,car");
    EXPECT_EQ(VA::VehicleCategoriesToString(0), "none");
    EXPECT_EQ(VA::VehicleCategoriesToString(0xFF000000u), "none");  // beyond the table
    EXPECT_EQ(VA::VehicleCategoriesToString(VA::kRoadVehicles),
              "bicycle,moped,motorcycle,car,trail,caravan,bus,agricultural vehicle,goods transport,poluting "
              "transport,dangerous transport,nailed tires,truck,police,firefighter,ambulance");
    // Every single bit reads back; unknown and inexact words add nothing.
    for (uint32_t bit = 1; bit <= 0x800000; bit <<= 1)
        EXPECT_EQ(VA::StringToVehicleCategories(VA::ToString(bit)), bit);
    EXPECT_EQ(VA::StringToVehicleCategories("car,hovercraft,bus"), VA::eCar | VA::eBus);
    EXPECT_EQ(VA::StringToVehicleCategories("car, bus"), VA::eCar);
    EXPECT_EQ(VA::StringToVehicleCategories("none"), 0u);
    EXPECT_EQ(VA::StringToVehicleCategories(""), 0u);
    EXPECT_EQ(VA::StringToVehicleCategories(nullptr), 0u);
    EXPECT_EQ(VA::StringToVehicleCategoryCombo(VA::VehicleCategoryComboToString(0xABCDEF).c_str()),
              0xABCDEFu);
    EXPECT_STREQ(VA::ToString(VA::ePolutingTransport), "poluting transport");
    EXPECT_EQ(VA::ToString(0), nullptr);
    EXPECT_EQ(VA::ToString(0x3), nullptr);
    EXPECT_EQ(VA::ToString(0x1000000), nullptr);
    EXPECT_EQ(VA::VehicleCategoryFromString("helicopter"), VA::eHelicopter);
    EXPECT_EQ(VA::VehicleCategoryFromString("car,bus"), VA::eNone);

    EXPECT_EQ(DirectionToString(6), "left,right");
    EXPECT_EQ(DirectionToString(4), "right");
    EXPECT_EQ(DirectionToString(0), "none");
    EXPECT_EQ(DirectionToString(7), "straight,left,right");
    EXPECT_EQ(StringToDirection("right,straight"), 5u);
    EXPECT_EQ(StringToDirection("up"), 0u);
}

TEST(VehicleAuthorisation, CategoriesAndLimits) {
    CountedPtr<VA> rules(new VA);
    EXPECT_EQ(rules->GetVehicleCategories(), 0u);
    rules->SetVehicleCategories(VA::eCar | VA::eTruck);
    EXPECT_EQ(rules->Ruvex::VehicleTypeElement::GetVehicleCategories(), "car,truck");
    EXPECT_TRUE(rules->IsAllowed(VA::eCar | VA::ePedestrian));
    EXPECT_TRUE(rules->IsForbidden(VA::ePedestrian));
    rules->AllowedVehicle(VA::ePedestrian);
    rules->ForbidVehicle(VA::eCar);
    EXPECT_EQ(rules->GetVehicleCategoriesFlag().bits, VA::ePedestrian | VA::eTruck);
    rules->SetVehicleCategoriesFlag({VA::eBus});
    EXPECT_TRUE(rules->GetVehicleCategoriesFlag().Has(VA::eBus));

    // Strictly greater fails; at the limit passes; no limit on either side never fails.
    EXPECT_FALSE(rules->IsTooHigh(1e6));
    rules->SetHeightLimit(3.5);
    EXPECT_TRUE(rules->IsTooHigh(4.0));
    EXPECT_FALSE(rules->IsTooHigh(3.5));
    EXPECT_FALSE(rules->IsTooHigh(VA::gNoLimit));
    rules->SetWidthLimit(2.5);
    rules->SetLengthLimit(12.0);
    rules->SetWeightLimit(19000.0);
    rules->SetWeightPerAxleLimit(11500.0);
    rules->SetTrailedWeightLimit(3500.0);
    EXPECT_TRUE(rules->IsTooWide(2.6));
    EXPECT_FALSE(rules->IsTooWide(2.5));
    EXPECT_TRUE(rules->IsTooLong(12.1));
    EXPECT_TRUE(rules->IsOverWeighted(19000.5));
    EXPECT_FALSE(rules->IsOverWeightedPerAxle(11500.0));
    EXPECT_TRUE(rules->HasOverWeightedTrail(4000.0));

    // The union admits what either admits.
    CountedPtr<VA> other(new VA);
    other->SetVehicleCategories(VA::eCar);
    other->SetHeightLimit(4.0);
    other->SetWidthLimit(2.0);
    CountedPtr<VA> both(*rules | *other);
    EXPECT_EQ(both->GetVehicleCategories(), VA::eBus | VA::eCar);
    EXPECT_EQ(both->GetHeightLimit(), 4.0);
    EXPECT_EQ(both->GetWidthLimit(), 2.5);
    EXPECT_EQ(both->GetLengthLimit(), VA::gNoLimit);

    CountedPtr<VA> copy(rules->Clone());
    EXPECT_EQ(Ruvex::SaveToString(copy.Get()), Ruvex::SaveToString(rules.Get()));
    other->CopyFrom(rules.Get());
    EXPECT_EQ(other->GetHeightLimit(), 3.5);
    EXPECT_EQ(other->GetVehicleCategories(), VA::eBus);
}

TEST(VehicleAuthorisation, UnknownWordsWarnAndAreKept) {
    Init(Ruvex::Encoding::GetMode());
    const char* text =
        "<Ruvex version=\"2.5\" versionRevision=\"0\">\n\n<VehicleType "
        "vehicleCategories=\"car,lorry\"/></Ruvex>";
    CountedPtr<Ruvex::Element> root(Ruvex::Load(text, true));
    auto* rules = dynamic_cast<VA*>(root.Get());
    ASSERT_NE(rules, nullptr);
    EXPECT_EQ(rules->GetVehicleCategories(), VA::eCar);
    ASSERT_EQ(Ruvex::GetLastProblems().size(), 1u);
    EXPECT_EQ(Ruvex::GetLastProblems()[0].line, 3u);
    EXPECT_NE(Ruvex::GetLastProblems()[0].message.find("\"lorry\""), std::string::npos);
    EXPECT_NE(Ruvex::SaveToString(rules).find("car,lorry"), std::string::npos);
}
