// Thin owning wrappers over the GDAL spatial-reference C API, private to the core module.
// No GDAL header leaks from here: handles are kept as opaque pointers and every call into GDAL is made
// under a quiet error scope, so that GDAL never writes to the host's stderr and failures surface as a
// bool plus a message.
#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Orvia::Gdal {

// Silences GDAL on this thread for the lifetime of the scope and records what it would have printed.
// Scopes nest; the innermost one records. Debug messages are dropped; a failure message is not
// overwritten by a later warning. Process-wide handlers, which belong to the host, are left alone.
class QuietErrorScope {
public:
    QuietErrorScope();
    ~QuietErrorScope();
    QuietErrorScope(const QuietErrorScope&) = delete;
    QuietErrorScope& operator=(const QuietErrorScope&) = delete;

    // Last failure (else last warning) reported by GDAL inside the scope; empty when GDAL said nothing.
    const std::string& Message() const { return message_; }
    bool HasFailure() const { return hasFailure_; }

    // Called by the installed handler only.
    void Record(bool isFailure, const char* message);

private:
    std::string message_;
    bool hasFailure_ = false;
};

// Message of the last failed call of this module on this thread ("" before any failure). Kept after the
// scope that captured it has ended, for callers that only receive a bool.
const std::string& LastErrorMessage();

class CoordinateTransformation;

// One owned OGR spatial reference, or nothing. Every import sets the longitude-first (x = easting or
// longitude) axis mapping on the object itself; process-wide defaults are never changed.
// A failed import leaves the object empty and puts GDAL's message in LastErrorMessage().
class SpatialReference {
public:
    SpatialReference() noexcept = default;
    ~SpatialReference();
    SpatialReference(const SpatialReference& other);  // deep copy
    SpatialReference& operator=(const SpatialReference& other);
    SpatialReference(SpatialReference&& other) noexcept;
    SpatialReference& operator=(SpatialReference&& other) noexcept;

    // Replace the held reference by the one described; false (and empty) on failure.
    bool ImportEpsg(int code);
    bool ImportWkt(std::string_view wkt);      // WKT1 or WKT2 text
    bool ImportProj4(std::string_view proj4);  // "+proj=... " definition
    bool SetWgs84();                           // geographic WGS84, degrees, longitude first

    static SpatialReference FromEpsg(int code);
    static SpatialReference FromWkt(std::string_view wkt);
    static SpatialReference FromProj4(std::string_view proj4);
    static SpatialReference Wgs84();

    bool IsEmpty() const { return handle_ == nullptr; }
    void Reset();

    // One-line and indented WKT1; empty when the object is empty or GDAL cannot export it.
    std::string ExportWkt() const;
    std::string ExportPrettyWkt() const;

    // GDAL's equivalence judgement; false when either side is empty.
    bool IsSame(const SpatialReference& other) const;
    bool IsProjected() const;

    // Value of the `child`-th child of the node named `key` (case-insensitive; the nearest to the root
    // wins, so "AUTHORITY" is the reference's own when it has one); nullopt when absent or empty.
    std::optional<std::string> GetAttribute(const char* key, int child = 0) const;

    // EPSG code of the reference itself / of its geographic system; 0 when there is none or the
    // authority is not EPSG.
    int GetEpsgCode() const;
    int GetGeographicEpsgCode() const;

private:
    friend class CoordinateTransformation;
    bool Adopt(void* handle, int importError, const QuietErrorScope& scope);

    void* handle_ = nullptr;  // OGRSpatialReferenceH
};

// One owned coordinate transformation between two references, or nothing. The transformation keeps its
// own copies of the references, which may be destroyed afterwards.
class CoordinateTransformation {
public:
    CoordinateTransformation() noexcept = default;
    ~CoordinateTransformation();
    CoordinateTransformation(const CoordinateTransformation&) = delete;
    CoordinateTransformation& operator=(const CoordinateTransformation&) = delete;
    CoordinateTransformation(CoordinateTransformation&& other) noexcept;
    CoordinateTransformation& operator=(CoordinateTransformation&& other) noexcept;

    // Replace the held transformation by source -> target; false (and empty) when either reference is
    // empty or GDAL finds no operation between them.
    bool Create(const SpatialReference& source, const SpatialReference& target);
    static CoordinateTransformation Between(const SpatialReference& source, const SpatialReference& target);

    bool IsEmpty() const { return handle_ == nullptr; }
    void Reset();

    // Transforms one point in place, in the units and the longitude-first axis order of the references
    // (degrees for geographic systems, metres for projected ones). False when empty or when GDAL fails
    // (point outside the domain, non-finite input); the point is then left unchanged.
    bool Transform(double& x, double& y, double& z) const;

private:
    void* handle_ = nullptr;  // OGRCoordinateTransformationH
};

// The "GDAL_DATA" configuration option, where GDAL finds its support files. Unset, GDAL uses the
// directory compiled into it. SetDataLocation(nullptr) unsets it.
inline constexpr const char* kDataLocationUndefined = "GDAL_DATA option not defined";
std::string GetDataLocation();  // kDataLocationUndefined when unset
void SetDataLocation(const char* path);

// EPSG 27561 "NTF (Paris) / Lambert Nord France" as GDAL defines it, built in so that the default
// projection does not depend on a readable EPSG database.
inline constexpr int kLambertNordFranceEpsg = 27561;
extern const char* const kLambertNordFranceWkt;

}  // namespace Orvia::Gdal
