#include <orvia/core/background_image.h>
#include <orvia/core/geolocalisation.h>
#include <orvia/ruvex/factory.h>

#include "gdal_support.h"

#include <charconv>
#include <fstream>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace Orvia {

namespace {

constexpr double kDefaultLatitudeDeg = 48.86667;
constexpr double kDefaultLongitudeDeg = 2.3333;
constexpr double kDefaultElevationM = 42.065;
constexpr double kDefaultScaleFactor = 1.0;
constexpr uint32_t kWgs84Epsg = 4326;

// Distance from which the scene's viewpoint looks down at the local origin.
constexpr double kViewpointRangeM = 1000.0;

uint32_t ParseEpsgCode(const std::string& text) {
    uint32_t code = 0;
    const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), code);
    return error == std::errc() ? code : 0;
}

}  // namespace

// The GDAL objects implied by the persisted projection. Both transformations are made on first use after the
// document reference changes: making them reads the projection database, which costs more than loading a
// network, and most networks never convert a coordinate.
struct Geolocalisation::Projection {
    Gdal::SpatialReference document;
    Gdal::SpatialReference wgs84;
    mutable Gdal::CoordinateTransformation toWgs84;
    mutable Gdal::CoordinateTransformation fromWgs84;
    mutable bool built = false;

    Projection() = default;
    Projection(const Projection& other) : document(other.document), wgs84(other.wgs84) {}
    Projection& operator=(const Projection& other) {
        if (this != &other) {
            document = other.document;
            wgs84 = other.wgs84;
            built = false;
        }
        return *this;
    }

    void Rebuild() { built = false; }
    const Projection& Built() const {
        if (!built) {
            toWgs84.Create(document, wgs84);
            fromWgs84.Create(wgs84, document);
            built = true;
        }
        return *this;
    }
};

Geolocalisation::Geolocalisation() : m_projection(std::make_unique<Projection>()) {
    GeolocalisationElement::SetLatitude(kDefaultLatitudeDeg);
    GeolocalisationElement::SetLongitude(kDefaultLongitudeDeg);
    GeolocalisationElement::SetElevation(kDefaultElevationM);
    SetScaleFactor(kDefaultScaleFactor);

    // Every network starts from the same projection centred on the same point: worked out once.
    struct Default {
        Projection projection;
        uint32_t epsg = kWgs84Epsg;
        std::string wkt;
        vek::Vector3 centering;
    };
    static const Default kDefault = [] {
        Default d;
        if (d.projection.document.ImportWkt(Gdal::kLambertNordFranceWkt))
            d.epsg = Gdal::kLambertNordFranceEpsg;
        else
            d.projection.document.SetWgs84();
        d.wkt = d.projection.document.ExportWkt();
        d.projection.wgs84.SetWgs84();
        // GDAL takes longitude first.
        double x = kDefaultLongitudeDeg, y = kDefaultLatitudeDeg, z = kDefaultElevationM;
        if (!d.projection.document.IsEmpty() && d.projection.Built().fromWgs84.Transform(x, y, z))
            d.centering = vek::Vector3(x, y, z);
        return d;
    }();
    *m_projection = kDefault.projection;
    SetEpsg(kDefault.epsg);
    SetWkt(kDefault.wkt);
    SetCentering(kDefault.centering);
}

Geolocalisation::Geolocalisation(const Geolocalisation& other)
    : GeolocalisationElement(other), m_projection(std::make_unique<Projection>(*other.m_projection)) {}

Geolocalisation& Geolocalisation::operator=(const Geolocalisation& other) {
    if (this != &other) {
        GeolocalisationElement::operator=(other);
        *m_projection = *other.m_projection;
    }
    return *this;
}

Geolocalisation::~Geolocalisation() = default;

void Geolocalisation::RebuildTransformations() {
    m_projection->Rebuild();
}

bool Geolocalisation::GetOrviaCoord(const vek::Vector3& latLonElevation, vek::Vector3& local) const {
    // GDAL takes longitude first.
    double x = latLonElevation.y;
    double y = latLonElevation.x;
    double z = latLonElevation.z;
    local = vek::Vector3();
    const Projection& projection = *m_projection;
    if (projection.document.IsEmpty() || projection.wgs84.IsEmpty()) return false;
    if (!projection.Built().fromWgs84.Transform(x, y, z)) return false;
    local = vek::Vector3(x, y, z) - GetCentering();
    return true;
}

bool Geolocalisation::GetWgs84Coord(const vek::Vector3& local, vek::Vector3& latLonElevation) const {
    const vek::Vector3 projected = local + GetCentering();
    double x = projected.x;
    double y = projected.y;
    double z = projected.z;
    latLonElevation = vek::Vector3();
    const Projection& projection = *m_projection;
    if (projection.document.IsEmpty() || projection.wgs84.IsEmpty()) return false;
    if (!projection.Built().toWgs84.Transform(x, y, z)) return false;
    latLonElevation = vek::Vector3(y, x, z);
    return true;
}

void Geolocalisation::CenterOn(const vek::Vector3& latLonElevation) {
    // The projection must not be taken relative to the old centre.
    SetCentering(vek::Vector3());
    vek::Vector3 projected;
    GetOrviaCoord(latLonElevation, projected);
    SetCentering(projected);
}

void Geolocalisation::UpdateGeographicPosition(bool withElevation) {
    vek::Vector3 origin;
    if (!GetWgs84Coord(vek::Vector3(), origin)) return;
    GeolocalisationElement::SetLatitude(origin.x);
    GeolocalisationElement::SetLongitude(origin.y);
    if (withElevation) GeolocalisationElement::SetElevation(origin.z);
}

void Geolocalisation::SetLatitude(double latitude) {
    CenterOn(vek::Vector3(latitude, GetLongitude(), GetElevation()));
    GeolocalisationElement::SetLatitude(latitude);
}

void Geolocalisation::SetLongitude(double longitude) {
    CenterOn(vek::Vector3(GetLatitude(), longitude, GetElevation()));
    GeolocalisationElement::SetLongitude(longitude);
}

void Geolocalisation::SetElevation(double elevation) {
    CenterOn(vek::Vector3(GetLatitude(), GetLongitude(), elevation));
    GeolocalisationElement::SetElevation(elevation);
}

void Geolocalisation::CenterToLatLonPoint(double latitude, double longitude) {
    CenterOn(vek::Vector3(latitude, longitude, 0.0));
    GeolocalisationElement::SetLatitude(latitude);
    GeolocalisationElement::SetLongitude(longitude);
}

void Geolocalisation::SetCenteringVector(const vek::Vector3& centering) {
    SetCentering(centering);
    UpdateGeographicPosition(false);
}

bool Geolocalisation::SetTransformationParameters(int epsg) {
    bool changed = false;
    Gdal::SpatialReference candidate;
    if (candidate.ImportEpsg(epsg)) {
        // The session must hold what a reload will rebuild: the reference read back from the stored WKT.
        const std::string wkt = candidate.ExportWkt();
        Gdal::SpatialReference reread;
        if (!wkt.empty() && reread.ImportWkt(wkt)) {
            SetEpsg(static_cast<uint32_t>(epsg));
            SetWkt(wkt);
            m_projection->document = std::move(reread);
            RebuildTransformations();
            SetCentering(vek::Vector3());
            changed = true;
        }
    }
    UpdateGeographicPosition(false);
    return changed;
}

bool Geolocalisation::SetTransformationParameters(const std::string& definition) {
    if (definition.empty()) {
        UpdateGeographicPosition(false);
        return false;
    }
    Gdal::SpatialReference candidate;
    if (candidate.ImportWkt(definition)) {
        SetWkt(definition);
        m_projection->document = std::move(candidate);
        RebuildTransformations();
        const Gdal::SpatialReference& document = m_projection->document;
        const std::optional<std::string> authority = document.GetAttribute("AUTHORITY", 1);
        SetEpsg(authority ? ParseEpsgCode(*authority)
                          : static_cast<uint32_t>(document.GetGeographicEpsgCode()));
        SetCentering(vek::Vector3());
        UpdateGeographicPosition(false);
        return true;
    }
    if (candidate.ImportProj4(definition)) {
        // Stored as WKT, like every other definition; an export failure ends as an empty definition.
        return SetTransformationParameters(candidate.ExportPrettyWkt());
    }
    UpdateGeographicPosition(false);
    return false;
}

void Geolocalisation::PostLoad(Network* /*network*/) {
    m_projection->document.ImportWkt(GetWkt());
    RebuildTransformations();
    UpdateGeographicPosition(true);
}

bool Geolocalisation::IsSame(const std::string& wkt) const {
    if (wkt.empty()) return GetWkt().empty();
    const Gdal::SpatialReference other = Gdal::SpatialReference::FromWkt(wkt);
    return !other.IsEmpty() && other.IsSame(m_projection->document);
}

std::string Geolocalisation::GetDocumentProjectionName() const {
    const Gdal::SpatialReference& document = m_projection->document;
    if (document.IsEmpty()) return {};
    return document.GetAttribute(document.IsProjected() ? "PROJCS" : "GEOGCS").value_or("Custom");
}

bool Geolocalisation::GetProjectedBounds(int epsg, ProjectedBounds& bounds) {
    switch (epsg) {
        case 3857:
            return false;
        case 27562:
            bounds = {50198.0586, 1016966.9382, 64100.6841, 373525.1009};
            return true;
        case 4267:  // long-standing values, kept even though they do not look like these systems' extents
            bounds = {-52.0, 172.0, 8.0, 72.0};
            return true;
        case 4269:
            bounds = {-52.0, 172.0, 14.25, 83.2};
            return true;
        default:
            bounds = {-180.0, 180.0, -90.0, 90.0};
            return false;
    }
}

Geolocalisation* Geolocalisation::Load(const char* path) {
    Ruvex::Element* root = Ruvex::Load(path, false);
    auto* geolocalisation = dynamic_cast<Geolocalisation*>(root);
    if (geolocalisation == nullptr) {
        if (root != nullptr) root->Release();  // count 0: destroys it
        return nullptr;
    }
    geolocalisation->PostLoad(nullptr);
    return geolocalisation;
}

bool Geolocalisation::Save(const char* path) {
    return Ruvex::Save(this, path);
}

void Geolocalisation::SetSupportDataLocation(const char* path) {
    Gdal::SetDataLocation(path);
}

std::string Geolocalisation::GetSupportDataLocation() {
    return Gdal::GetDataLocation();
}

// ---------------------------------------------------------------------------------------------------------
// Earth-viewer scene file.

namespace {

std::string XmlEscaped(std::string_view text) {
    std::string out;
    out.reserve(text.size());
    for (const char c : text) {
        switch (c) {
            case '&':
                out += "&amp;";
                break;
            case '<':
                out += "&lt;";
                break;
            case '>':
                out += "&gt;";
                break;
            case '"':
                out += "&quot;";
                break;
            case '\n':
                out += "&#10;";
                break;
            default:
                out += c;
        }
    }
    return out;
}

// Shortest text that reads back as the same double.
std::string Number(double value) {
    char digits[64];
    const auto [end, error] = std::to_chars(digits, digits + sizeof(digits), value);
    return error == std::errc() ? std::string(digits, end) : std::string("0");
}

std::string Extent(double minX, double minY, double maxX, double maxY) {
    return " xmin=\"" + Number(minX) + "\" ymin=\"" + Number(minY) + "\" xmax=\"" + Number(maxX) +
           "\" ymax=\"" + Number(maxY) + "\"";
}

}  // namespace

bool Geolocalisation::GenerateOSGEarthFile(const char* path, const BackGroundImage* image) const {
    const Gdal::SpatialReference& document = m_projection->document;
    if (path == nullptr || document.IsEmpty()) return false;
    const std::string srs = XmlEscaped(document.ExportWkt());
    if (srs.empty()) return false;

    std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n";
    text += "<map name=\"" + XmlEscaped(GetDocumentProjectionName()) + "\" type=\"" +
            (document.IsProjected() ? "projected" : "geocentric") + "\" version=\"2\">\n";
    text += "  <options>\n";
    ProjectedBounds bounds;
    const bool bounded = GetProjectedBounds(static_cast<int>(GetEpsg()), bounds);
    text += "    <profile srs=\"" + srs + "\"" +
            (bounded ? Extent(bounds.minX, bounds.minY, bounds.maxX, bounds.maxY) : std::string()) + "/>\n";
    text += "  </options>\n";

    if (image != nullptr && !image->GetFilePath().empty()) {
        // The image covers offset .. offset + dimension in the local frame; a rotation cannot be expressed
        // by an extent and is left out.
        const vek::Vector3& centre = GetCentering();
        const vek::Vector2 low(centre.x + image->GetOffset().x, centre.y + image->GetOffset().y);
        const vek::Vector2 high = low + image->GetDimension();
        text += "  <image name=\"BackgroundImage" + std::to_string(image->GetCameraIndex()) +
                "\" driver=\"gdal\">\n";
        text += "    <url>" + XmlEscaped(image->GetFilePath()) + "</url>\n";
        text += "    <profile srs=\"" + srs + "\"" + Extent(low.x, low.y, high.x, high.y) + "/>\n";
        text += "  </image>\n";
    }

    text += "  <viewpoints>\n";
    text += "    <viewpoint name=\"Origin\" lat=\"" + Number(GetLatitude()) + "\" long=\"" +
            Number(GetLongitude()) + "\" height=\"" + Number(GetElevation()) +
            "\" heading=\"0\" pitch=\"-90\" range=\"" + Number(kViewpointRangeM) + "\"/>\n";
    text += "  </viewpoints>\n";
    text += "</map>\n";

    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    if (!file) return false;
    file << text;
    file.close();
    return !file.fail();
}

}  // namespace Orvia
