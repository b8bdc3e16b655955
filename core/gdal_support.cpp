#include "gdal_support.h"

#include <cpl_conv.h>
#include <cpl_error.h>
#include <ogr_srs_api.h>

#include <cmath>
#include <cstdlib>
#include <utility>

namespace Orvia::Gdal {

const char* const kLambertNordFranceWkt =
    "PROJCS[\"NTF (Paris) / Lambert Nord France\","
    "GEOGCS[\"NTF (Paris)\","
    "DATUM[\"Nouvelle_Triangulation_Francaise_Paris\","
    "SPHEROID[\"Clarke 1880 (IGN)\",6378249.2,293.466021293627,AUTHORITY[\"EPSG\",\"7011\"]],"
    "AUTHORITY[\"EPSG\",\"6807\"]],"
    "PRIMEM[\"Paris\",2.33722917,AUTHORITY[\"EPSG\",\"8903\"]],"
    "UNIT[\"grad\",0.0157079632679489,AUTHORITY[\"EPSG\",\"9105\"]],"
    "AUTHORITY[\"EPSG\",\"4807\"]],"
    "PROJECTION[\"Lambert_Conformal_Conic_1SP\"],"
    "PARAMETER[\"latitude_of_origin\",55],"
    "PARAMETER[\"central_meridian\",0],"
    "PARAMETER[\"scale_factor\",0.999877341],"
    "PARAMETER[\"false_easting\",600000],"
    "PARAMETER[\"false_northing\",200000],"
    "UNIT[\"metre\",1,AUTHORITY[\"EPSG\",\"9001\"]],"
    "AXIS[\"Easting\",EAST],"
    "AXIS[\"Northing\",NORTH],"
    "AUTHORITY[\"EPSG\",\"27561\"]]";

namespace {

thread_local std::string tLastErrorMessage;

void CPL_STDCALL QuietHandler(CPLErr errorClass, CPLErrorNum /*number*/, const char* message) {
    if (errorClass == CE_None || errorClass == CE_Debug) return;
    auto* scope = static_cast<QuietErrorScope*>(CPLGetErrorHandlerUserData());
    if (scope != nullptr) scope->Record(errorClass >= CE_Failure, message);
}

// Makes a failure visible to callers that only see a bool; GDAL does not always explain itself.
bool Fail(const QuietErrorScope& scope, const char* fallback) {
    tLastErrorMessage = scope.Message().empty() ? std::string(fallback) : scope.Message();
    return false;
}

OGRSpatialReferenceH AsSrs(void* handle) {
    return static_cast<OGRSpatialReferenceH>(handle);
}

OGRSpatialReferenceH NewSrs() {
    return OSRNewSpatialReference(nullptr);
}

std::string TakeCplString(char* text) {
    std::string result = text != nullptr ? text : "";
    CPLFree(text);
    return result;
}

}  // namespace

// ---------------------------------------------------------------------------------------------------------

QuietErrorScope::QuietErrorScope() {
    CPLPushErrorHandlerEx(QuietHandler, this);
}

QuietErrorScope::~QuietErrorScope() {
    CPLPopErrorHandler();
}

void QuietErrorScope::Record(bool isFailure, const char* message) {
    if (hasFailure_ && !isFailure) return;
    hasFailure_ = hasFailure_ || isFailure;
    message_ = message != nullptr ? message : "";
}

const std::string& LastErrorMessage() {
    return tLastErrorMessage;
}

// ---------------------------------------------------------------------------------------------------------

SpatialReference::~SpatialReference() {
    Reset();
}

SpatialReference::SpatialReference(const SpatialReference& other) {
    if (other.handle_ == nullptr) return;
    QuietErrorScope quiet;
    OGRSpatialReferenceH clone = OSRClone(AsSrs(other.handle_));
    if (clone != nullptr) OSRSetAxisMappingStrategy(clone, OAMS_TRADITIONAL_GIS_ORDER);
    handle_ = clone;
}

SpatialReference& SpatialReference::operator=(const SpatialReference& other) {
    if (this != &other) *this = SpatialReference(other);
    return *this;
}

SpatialReference::SpatialReference(SpatialReference&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

SpatialReference& SpatialReference::operator=(SpatialReference&& other) noexcept {
    if (this != &other) {
        Reset();
        handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
}

void SpatialReference::Reset() {
    if (handle_ != nullptr) OSRDestroySpatialReference(AsSrs(handle_));
    handle_ = nullptr;
}

bool SpatialReference::Adopt(void* handle, int importError, const QuietErrorScope& scope) {
    Reset();
    OGRSpatialReferenceH srs = AsSrs(handle);
    if (importError != OGRERR_NONE) {
        OSRDestroySpatialReference(srs);
        return Fail(scope, "GDAL could not read the spatial reference");
    }
    // Longitude (easting) first whatever the authority says, on this object only.
    OSRSetAxisMappingStrategy(srs, OAMS_TRADITIONAL_GIS_ORDER);
    handle_ = srs;
    return true;
}

bool SpatialReference::ImportEpsg(int code) {
    QuietErrorScope quiet;
    OGRSpatialReferenceH srs = NewSrs();
    const OGRErr error = OSRImportFromEPSG(srs, code);
    return Adopt(srs, error, quiet);
}

bool SpatialReference::ImportWkt(std::string_view wkt) {
    QuietErrorScope quiet;
    const std::string text(wkt);  // the C API wants a terminated, mutable cursor
    char* cursor = const_cast<char*>(text.c_str());
    OGRSpatialReferenceH srs = NewSrs();
    const OGRErr error = text.empty() ? OGRERR_CORRUPT_DATA : OSRImportFromWkt(srs, &cursor);
    return Adopt(srs, error, quiet);
}

bool SpatialReference::ImportProj4(std::string_view proj4) {
    QuietErrorScope quiet;
    const std::string text(proj4);
    OGRSpatialReferenceH srs = NewSrs();
    const OGRErr error = text.empty() ? OGRERR_CORRUPT_DATA : OSRImportFromProj4(srs, text.c_str());
    return Adopt(srs, error, quiet);
}

bool SpatialReference::SetWgs84() {
    QuietErrorScope quiet;
    OGRSpatialReferenceH srs = NewSrs();
    const OGRErr error = OSRSetWellKnownGeogCS(srs, "WGS84");
    return Adopt(srs, error, quiet);
}

SpatialReference SpatialReference::FromEpsg(int code) {
    SpatialReference result;
    result.ImportEpsg(code);
    return result;
}

SpatialReference SpatialReference::FromWkt(std::string_view wkt) {
    SpatialReference result;
    result.ImportWkt(wkt);
    return result;
}

SpatialReference SpatialReference::FromProj4(std::string_view proj4) {
    SpatialReference result;
    result.ImportProj4(proj4);
    return result;
}

SpatialReference SpatialReference::Wgs84() {
    SpatialReference result;
    result.SetWgs84();
    return result;
}

std::string SpatialReference::ExportWkt() const {
    if (handle_ == nullptr) return {};
    QuietErrorScope quiet;
    char* text = nullptr;
    if (OSRExportToWkt(AsSrs(handle_), &text) != OGRERR_NONE) {
        CPLFree(text);
        Fail(quiet, "GDAL could not export the spatial reference to WKT");
        return {};
    }
    return TakeCplString(text);
}

std::string SpatialReference::ExportPrettyWkt() const {
    if (handle_ == nullptr) return {};
    QuietErrorScope quiet;
    char* text = nullptr;
    if (OSRExportToPrettyWkt(AsSrs(handle_), &text, FALSE) != OGRERR_NONE) {
        CPLFree(text);
        Fail(quiet, "GDAL could not export the spatial reference to WKT");
        return {};
    }
    return TakeCplString(text);
}

bool SpatialReference::IsSame(const SpatialReference& other) const {
    if (handle_ == nullptr || other.handle_ == nullptr) return false;
    QuietErrorScope quiet;
    return OSRIsSame(AsSrs(handle_), AsSrs(other.handle_)) != FALSE;
}

bool SpatialReference::IsProjected() const {
    if (handle_ == nullptr) return false;
    QuietErrorScope quiet;
    return OSRIsProjected(AsSrs(handle_)) != FALSE;
}

std::optional<std::string> SpatialReference::GetAttribute(const char* key, int child) const {
    if (handle_ == nullptr || key == nullptr) return std::nullopt;
    QuietErrorScope quiet;
    const char* value = OSRGetAttrValue(AsSrs(handle_), key, child);
    if (value == nullptr) return std::nullopt;
    return std::string(value);
}

namespace {

int EpsgCodeOf(OGRSpatialReferenceH srs, const char* targetKey) {
    const char* authority = OSRGetAuthorityName(srs, targetKey);
    const char* code = OSRGetAuthorityCode(srs, targetKey);
    if (authority == nullptr || code == nullptr || !EQUAL(authority, "EPSG")) return 0;
    return std::atoi(code);
}

}  // namespace

int SpatialReference::GetEpsgCode() const {
    if (handle_ == nullptr) return 0;
    QuietErrorScope quiet;
    return EpsgCodeOf(AsSrs(handle_), nullptr);
}

int SpatialReference::GetGeographicEpsgCode() const {
    if (handle_ == nullptr) return 0;
    QuietErrorScope quiet;
    return EpsgCodeOf(AsSrs(handle_), "GEOGCS");
}

// ---------------------------------------------------------------------------------------------------------

namespace {

OGRCoordinateTransformationH AsTransform(void* handle) {
    return static_cast<OGRCoordinateTransformationH>(handle);
}

}  // namespace

CoordinateTransformation::~CoordinateTransformation() {
    Reset();
}

CoordinateTransformation::CoordinateTransformation(CoordinateTransformation&& other) noexcept
    : handle_(std::exchange(other.handle_, nullptr)) {}

CoordinateTransformation& CoordinateTransformation::operator=(CoordinateTransformation&& other) noexcept {
    if (this != &other) {
        Reset();
        handle_ = std::exchange(other.handle_, nullptr);
    }
    return *this;
}

void CoordinateTransformation::Reset() {
    if (handle_ != nullptr) OCTDestroyCoordinateTransformation(AsTransform(handle_));
    handle_ = nullptr;
}

bool CoordinateTransformation::Create(const SpatialReference& source, const SpatialReference& target) {
    Reset();
    QuietErrorScope quiet;
    if (source.IsEmpty() || target.IsEmpty()) return Fail(quiet, "missing spatial reference");
    handle_ = OCTNewCoordinateTransformation(AsSrs(source.handle_), AsSrs(target.handle_));
    if (handle_ == nullptr) return Fail(quiet, "GDAL found no transformation between the references");
    return true;
}

CoordinateTransformation CoordinateTransformation::Between(const SpatialReference& source,
                                                           const SpatialReference& target) {
    CoordinateTransformation result;
    result.Create(source, target);
    return result;
}

bool CoordinateTransformation::Transform(double& x, double& y, double& z) const {
    if (handle_ == nullptr) return false;
    QuietErrorScope quiet;
    double tx = x;
    double ty = y;
    double tz = z;
    const bool ok = OCTTransform(AsTransform(handle_), 1, &tx, &ty, &tz) != FALSE;
    // Some failures come back as success with infinite coordinates.
    if (!ok || !std::isfinite(tx) || !std::isfinite(ty) || !std::isfinite(tz)) {
        return Fail(quiet, "GDAL could not transform the point");
    }
    x = tx;
    y = ty;
    z = tz;
    return true;
}

// ---------------------------------------------------------------------------------------------------------

std::string GetDataLocation() {
    const char* value = CPLGetConfigOption("GDAL_DATA", nullptr);
    return value != nullptr ? std::string(value) : std::string(kDataLocationUndefined);
}

void SetDataLocation(const char* path) {
    CPLSetConfigOption("GDAL_DATA", path);
}

}  // namespace Orvia::Gdal
