#pragma once

// Which vehicles a lane, a sign or a passageway addresses, and within which size and weight limits.

#include <orvia/ruvex/elements/traffic.h>

#include <cstdint>
#include <string>

namespace Orvia {

// Directions a rule governs, as a set: 1 straight, 2 left, 4 right.
enum EDirection : uint32_t {
    eDirectionStraight = 1,
    eDirectionLeft = 2,
    eDirectionRight = 4,
    eDirectionAll = 7
};
// The set words in the order "straight", "left", "right", joined by ","; "none" for the empty set. Bits
// above 4 are ignored.
std::string DirectionToString(uint32_t directions);
// The inverse: the text split at ",", each part compared exactly; other parts add nothing. 0 for null.
uint32_t StringToDirection(const char* text);

// The record keeps the categories as their texts ("vehicleCategories"); the bit set is read from that text,
// so a file's words, unknown ones included, are saved as they were read until the set is changed here.
// Limits in metres and kilograms; a limit equal to gNoLimit means "no limit".
class VehicleAuthorisation : public Ruvex::VehicleTypeElement {
public:
    // One bit per category.
    enum EVehicleCategory : uint32_t {
        eNone = 0,
        ePedestrian = 0x1,
        eBicycle = 0x2,
        eMoped = 0x4,
        eMotorcycle = 0x8,
        eCar = 0x10,
        eTrail = 0x20,
        eCaravan = 0x40,
        eBus = 0x80,
        eAgriculturalVehicle = 0x100,
        eGoodsTransport = 0x200,
        ePolutingTransport = 0x400,
        eDangerousTransport = 0x800,
        eNailedTires = 0x1000,
        eTruck = 0x2000,
        eTramway = 0x4000,
        eTrain = 0x8000,
        ePolice = 0x10000,
        eFirefighter = 0x20000,
        eAmbulance = 0x40000,
        eSlowVehicle = 0x80000,
        eTaxi = 0x100000,
        eHov = 0x200000,
        eAirplane = 0x400000,
        eHelicopter = 0x800000,
    };
    // Road vehicles: every category from bicycle to truck, and police, firefighter, ambulance.
    static constexpr uint32_t kRoadVehicles = 0x73FFE;

    // The bit set as an object.
    struct VehicleCategoriesFlag {
        uint32_t bits = 0;
        bool Has(uint32_t categories) const { return (bits & categories) != 0; }
    };

    static constexpr double gNoLimit = Ruvex::VehicleTypeElement::gNoLimit;

    VehicleAuthorisation() = default;
    VehicleAuthorisation(const VehicleAuthorisation& other);
    ~VehicleAuthorisation() override;

    // Reads the record; category words outside the table add nothing and are reported as warnings.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // --- Categories
    // ----------------------------------------------------------------------------------------- Stores the
    // set (any combination of EVehicleCategory bits) and its text.
    void SetVehicleCategories(uint32_t categories);
    uint32_t GetVehicleCategories() const;
    void SetVehicleCategoriesFlag(VehicleCategoriesFlag flag) { SetVehicleCategories(flag.bits); }
    VehicleCategoriesFlag GetVehicleCategoriesFlag() const { return {GetVehicleCategories()}; }
    // Sets (clears) the bits of `categories`.
    void AllowedVehicle(uint32_t categories);
    void ForbidVehicle(uint32_t categories);
    // True when the set shares a bit with `categories`; IsForbidden is its negation.
    bool IsAllowed(uint32_t categories) const { return (GetVehicleCategories() & categories) != 0; }
    bool IsForbidden(uint32_t categories) const { return !IsAllowed(categories); }

    // --- Limits
    // --------------------------------------------------------------------------------------------- False
    // when the limit or the value is gNoLimit; otherwise true when value > limit (a value at the limit
    // passes).
    bool IsTooHigh(double height) const { return Exceeds(height, m_HeightLimit); }
    bool IsTooWide(double width) const { return Exceeds(width, m_WidthLimit); }
    bool IsTooLong(double length) const { return Exceeds(length, m_LengthLimit); }
    bool IsOverWeighted(double weight) const { return Exceeds(weight, m_WeightLimit); }
    bool IsOverWeightedPerAxle(double weight) const { return Exceeds(weight, m_WeightPerAxleLimit); }
    bool HasOverWeightedTrail(double weight) const { return Exceeds(weight, m_TrailedWeightLimit); }

    // A new authorisation addressing both: the categories are united and each limit is the looser of the two
    // (gNoLimit when either has none), so whatever either admits, the result admits (count 0).
    VehicleAuthorisation* operator|(const VehicleAuthorisation& other) const;

    // A deep copy (count 0; the caller owns it).
    VehicleAuthorisation* Clone() const;
    // Takes other's categories and limits; nothing for null.
    void CopyFrom(const VehicleAuthorisation* other);

    // --- Texts
    // ---------------------------------------------------------------------------------------------- The text
    // of one category; null for 0, for a combination and for bits beyond the table.
    static const char* ToString(uint32_t category);
    // The texts of the set bits in table order joined by ","; "none" when no bit is set.
    static std::string VehicleCategoriesToString(uint32_t categories);
    // The inverse: the text split at ",", each part compared exactly with the table's texts; unknown parts
    // add nothing. 0 for null.
    static uint32_t StringToVehicleCategories(const char* text);
    // One category from its exact text; eNone for any other text.
    static EVehicleCategory VehicleCategoryFromString(const char* text);
    static std::string VehicleCategoryComboToString(uint32_t categories) {
        return VehicleCategoriesToString(categories);
    }
    static uint32_t StringToVehicleCategoryCombo(const char* text) { return StringToVehicleCategories(text); }

private:
    static bool Exceeds(double value, double limit) {
        return value != gNoLimit && limit != gNoLimit && value > limit;
    }
};

}  // namespace Orvia
