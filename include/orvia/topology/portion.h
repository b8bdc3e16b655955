#pragma once

// Portions: the stretches a track is cut into, each between a start and an end profile.

#include <orvia/geometry/passageway.h>
#include <orvia/geometry/profile_modifier.h>
#include <orvia/ruvex/elements/portion.h>
#include <orvia/vek/box.h>

#include <cstddef>
#include <vector>

namespace Orvia {

class Profile;
class SubNetwork;
class Track;

// A stretch of its track's axis from the end of the portion before it (0 for the first) to its end distance
// (m). The cross-section is the start profile at the start and blends linearly into the end profile; an
// optional modifier bends borders in between. Profiles are the sub-network's (not owned).
class Portion : public Ruvex::PortionElement {
public:
    static constexpr size_t npos = static_cast<size_t>(-1);
    // Below this length (m) a portion has no extent: its normalised abscissa is 0.
    static constexpr double kDegenerateLength = 1e-12;

    Portion() = default;
    explicit Portion(Track* track) : m_track(track) {}
    // Same record and profiles, same track; the passageways are rebuilt on demand.
    Portion(const Portion& other);
    ~Portion() override;

    Track* GetTrack() const { return m_track; }
    void SetTrack(Track* track) { m_track = track; }
    SubNetwork* GetInSubNetwork() const;

    // 0 without a track, when not in its track's list, or for the first portion; else the end of the one
    // before. Linear in the portion count: queries on a track use the track's own look-up.
    double GetStartDistance() const;
    // Moves the end of the portion before (nothing for the first portion or without a track).
    void SetStartDistance(double s);
    double GetXYLength() const { return m_EndDistance - GetStartDistance(); }

    Profile* GetStartProfile() const { return m_startProfile; }
    Profile* GetEndProfile() const { return m_endProfile; }
    // Stores the profile and its name ("" for null).
    void SetStartProfile(Profile* profile);
    void SetEndProfile(Profile* profile);

    // (s - start) / (end - start) with s clamped to the portion; 0 for a portion shorter than
    // kDegenerateLength.
    double ConvertToZeroOneCoeff(double s) const;
    // Offsets (m) of the outer borders at s, blended between the profiles; a modified outer border follows
    // its modifier.
    void GetSideDistances(double s, double& left, double& right) const;

    // The centre-line point (with its altitude) where the portion starts; false (p untouched) without a track
    // or when the track's axis gives no point there.
    bool GetPosition(vek::Vector3& p) const;
    vek::Vector3 GetPosition() const;
    // Box of the road surface over the portion: the centre line and both outer borders sampled every
    // kBoxStep (m) and at both ends, with their heights. Empty without a track.
    static constexpr double kBoxStep = 1.0;
    vek::Box3 GetBoundingBox() const;

    // Lane `index` of the start profile (which = 0) or the end profile (1); null otherwise.
    Lane* FindLane(size_t which, size_t index) const;
    // Where `lane` is: start profile first. False for null or a lane of neither profile.
    bool FindProfileAndLaneIndex(const Lane* lane, size_t& which, size_t& index) const;

    ProfileModifier* GetProfileModifier() const;
    ProfileModifier* GetOrCreateProfileModifier();
    // The border modifier of that border id, or null. Valid after post-load (or BuildPassageways).
    const BorderModifier* GetModifiedBorder(size_t id) const {
        return id < m_modifiedBorders.size() ? m_modifiedBorders[id] : nullptr;
    }
    bool HasModifiedBorders() const { return m_hasModifiedBorders; }
    // Index of the last border of the start profile (npos without borders): its modifier follows the right
    // border of the last lane.
    size_t GetLastBorderId() const;
    // The border modifier for the strip's left border (the right one for the last strip), or null.
    BorderModifier* GetBorderModifierOfPassageway(size_t passageway) const;
    // Gives every border of the start profile that has none a modifier leaving it where the blend puts it
    // (offsets 0 at both ends, directions along the blend), ready to be bent; the passageways are rebuilt.
    // Returns the modifier.
    ProfileModifier* AddDefaultProfileModifier();
    // Largest |curvature| of the modifiers' functions at x (m from the portion's start).
    double GetMaxCurvatureFromProfileModifier(double x) const;

    // One strip per lane of the larger profile (see Passageway); the modifier's functions are rebuilt. The
    // geometry follows a modifier only between two profiles with the same number of borders, and only for
    // border ids the profile has.
    const std::vector<Passageway>& BuildPassageways();
    const std::vector<Passageway>& GetPassageways() const { return m_passageways; }

    // exchange: the profiles change places; invertProfiles: each is replaced by its inverse (the
    // sub-network's, see SubNetwork::GetOrCreateInverse; in place without a sub-network). The modifier is
    // mirrored and the end distance becomes trackLength - start, so that the portion covers the same stretch
    // of the reversed axis once the track reverses its list.
    void InvertProfile(bool keepWay, bool exchange, bool invertProfiles, double trackLength);

    // The same stretch seen from its other end: the profiles change places and are inverted as InvertProfile
    // does (circulation ways swapped) and the modifier is mirrored; the distances stay.
    void Invert();

    // Stores the track, resolves the profile names (a missing one falls back to the sub-network's first
    // profile), builds the passageways and the modifier's functions.
    void PostLoad(Track* track);
    // Documents older than 1.4.6 go through the legacy converter.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

    // A new portion of the same track with the same content (count 0; the caller owns it).
    Portion* Clone() const;
    void CopyFrom(const Portion* other);

private:
    Profile* ResolveProfile(std::string& name) const;

    Track* m_track = nullptr;
    Profile* m_startProfile = nullptr;
    Profile* m_endProfile = nullptr;
    std::vector<Passageway> m_passageways;
    // Border id -> its modifier when it has functions, so that queries need no search.
    std::vector<const BorderModifier*> m_modifiedBorders;
    bool m_hasModifiedBorders = false;
};

}  // namespace Orvia
