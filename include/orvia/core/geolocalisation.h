// Ties the network's local Cartesian frame to the Earth through a map projection.
#pragma once

#include <orvia/ruvex/elements/network.h>
#include <orvia/vek/vector.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>

namespace Orvia {

class BackGroundImage;
class Network;

// Extent of a projected system, in its own units (metres, or degrees for geographic systems).
struct ProjectedBounds {
    double minX = 0.0;
    double maxX = 0.0;
    double minY = 0.0;
    double maxY = 0.0;
};

// Local coordinates are projected coordinates (in the document projection, easting first) minus the
// centering vector, the projected position of the local origin. Geographic positions are WGS84 latitude,
// longitude (degrees) and height (metres, passed through unchanged by every projection). The persisted
// fields (position of the origin, projection as WKT and EPSG code, centering vector, azimuth, time
// offset, scale factor) are those of the data class; this class keeps the projection objects they imply.
// Nothing here prints or throws: GDAL's complaints are silenced and failures come back as false.
class Geolocalisation : public Ruvex::GeolocalisationElement {
public:
    // Origin at latitude 48.86667, longitude 2.3333, elevation 42.065 in EPSG 27561 "NTF (Paris) /
    // Lambert Nord France" (built in, no database needed); WGS84 (EPSG 4326) should GDAL refuse it.
    Geolocalisation();
    Geolocalisation(const Geolocalisation& other);
    Geolocalisation& operator=(const Geolocalisation& other);
    ~Geolocalisation() override;

    // (latitude, longitude, elevation) -> local point. False, with `local` zero, when the projection
    // is missing or the point cannot be projected.
    bool GetOrviaCoord(const vek::Vector3& latLonElevation, vek::Vector3& local) const;
    // Local point -> (latitude, longitude, elevation). False, with a zero result, on failure.
    bool GetWgs84Coord(const vek::Vector3& local, vek::Vector3& latLonElevation) const;

    // Move the local origin: the centering vector becomes the projection of the new position, computed
    // from scratch (not relative to the old one); it is zero when the position cannot be projected.
    void SetLatitude(double latitude);
    void SetLongitude(double longitude);
    void SetElevation(double elevation);
    // The origin moves to (latitude, longitude) at height 0; the stored elevation is left as it was.
    void CenterToLatLonPoint(double latitude, double longitude);

    // Sets the projected position of the local origin; latitude and longitude follow, elevation does not.
    void SetCenteringVector(const vek::Vector3& centering);
    const vek::Vector3& GetCenteringVector() const { return GetCentering(); }
    vek::Vector3 getCenteringVector() const { return GetCentering(); }

    // Switches the document projection to an EPSG system; the local origin becomes its projected origin
    // (centering zero). False for a code GDAL does not know: the projection is kept. Either way latitude
    // and longitude are recomputed from the local origin.
    bool SetTransformationParameters(int epsg);
    // Same from WKT, or from a PROJ.4 string (stored as its WKT). The EPSG code becomes the definition's
    // root authority code, else that of its geographic system. False for an empty or unreadable text.
    bool SetTransformationParameters(const std::string& definition);

    // After loading: rebuilds the projection from the stored WKT and sets latitude, longitude and
    // elevation from the centering vector (left as loaded when the WKT cannot be read). `network` is unused.
    void PostLoad(Network* network);

    // With an empty text: whether the document WKT is empty. Otherwise whether `wkt` is valid and
    // describes the document projection (GDAL's judgement: names may differ).
    bool IsSame(const std::string& wkt) const;
    // Name of the projected system, or of the geographic one when not projected; "Custom" when unnamed,
    // empty when there is no projection.
    std::string GetDocumentProjectionName() const;
    const std::string& GetDocumentWKT() const { return GetWkt(); }
    uint32_t GetDocumentESPG() const { return GetEpsg(); }

    // A document whose root element is a geolocalisation, post-loaded; null when the file does not read,
    // its root is of another kind, or the library's factory is not installed. The caller owns the result.
    static Geolocalisation* Load(const char* path);
    // Writes this object as the root of a document; false when the file cannot be written.
    bool Save(const char* path);

    // GDAL's support-data directory (configuration option "GDAL_DATA"); null unsets it. The getter returns
    // "GDAL_DATA option not defined" when unset (GDAL then uses the directory compiled into it).
    static void SetSupportDataLocation(const char* path);
    static std::string GetSupportDataLocation();

    // Writes an earth-viewer scene: a map in the document projection, `image` (optional) as an image layer
    // over its rectangle around the local origin, and a viewpoint above the origin. False when there is no
    // projection or the file cannot be written.
    bool GenerateOSGEarthFile(const char* path, const BackGroundImage* image = nullptr) const;

private:
    // Known extent of a few systems: true for 27562, 4267 and 4269; false for 3857 (bounds untouched) and
    // for any other code (bounds set to the whole Earth in degrees).
    static bool GetProjectedBounds(int epsg, ProjectedBounds& bounds);

    void RebuildTransformations();
    // Latitude and longitude (and elevation when asked) from the local origin; unchanged on failure.
    void UpdateGeographicPosition(bool withElevation);
    // The centering vector becomes the plain projection of a geographic position.
    void CenterOn(const vek::Vector3& latLonElevation);

    struct Projection;
    // The projection, made on first use when it is still the default one (null until then): a network's
    // default geolocalisation, replaced by the one a file holds, costs no GDAL work. Not for concurrent
    // readers of a default geolocalisation that was never queried.
    Projection& GetProjection() const;
    // A default projection; `lambert` tells whether GDAL could read the Lambert reference (else WGS84).
    static std::unique_ptr<Projection> MakeDefaultProjection(bool& lambert);
    // The default placement without its projection or the values that come from it.
    explicit Geolocalisation(std::nullptr_t);
    mutable std::unique_ptr<Projection> m_projection;
};

}  // namespace Orvia
