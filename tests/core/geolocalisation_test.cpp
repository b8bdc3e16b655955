#include <orvia/core/background_image.h>
#include <orvia/core/external_element.h>
#include <orvia/core/geolocalisation.h>
#include <orvia/core/library.h>
#include <orvia/core/network.h>
#include <orvia/ruvex/factory.h>

#include "../../core/gdal_support.h"

#include <gtest/gtest.h>
#include <pugixml.hpp>

#include <cstdio>
#include <filesystem>
#include <random>
#include <string>

namespace {

using Orvia::BackGroundImage;
using Orvia::Geolocalisation;
using Ruvex::CountedPtr;

// A projection and its inverse agree to micrometres; a millimetre still exposes any unit, axis or datum slip.
constexpr double kLocalToleranceM = 1e-3;
// About 0.1 mm on the ground.
constexpr double kAngleToleranceDeg = 1e-6;

constexpr double kDefaultLatitude = 48.86667;
constexpr double kDefaultLongitude = 2.3333;
constexpr double kDefaultElevation = 42.065;

// Bounds of EPSG 27562, metres.
constexpr double kCentreMinX = 50198.0586;
constexpr double kCentreMaxX = 1016966.9382;
constexpr double kCentreMinY = 64100.6841;
constexpr double kCentreMaxY = 373525.1009;

void ExpectNear(const vek::Vector3& actual, const vek::Vector3& expected, double tolerance) {
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

// Easting and northing of a WGS84 position in an EPSG system, computed without Geolocalisation.
vek::Vector3 Project(int epsg, double latitude, double longitude, double height) {
    const auto transform = Orvia::Gdal::CoordinateTransformation::Between(
        Orvia::Gdal::SpatialReference::Wgs84(), Orvia::Gdal::SpatialReference::FromEpsg(epsg));
    double x = longitude;
    double y = latitude;
    double z = height;
    EXPECT_TRUE(transform.Transform(x, y, z));
    return vek::Vector3(x, y, z);
}

std::string TempPath(const std::string& name) {
    const auto* test = testing::UnitTest::GetInstance()->current_test_info();
    return (std::filesystem::path(testing::TempDir()) / (std::string(test->name()) + "_" + name)).string();
}

}  // namespace

TEST(Geolocalisation, NewObjectMapsItsOriginToZero) {
    const Geolocalisation geo;
    EXPECT_EQ(geo.GetDocumentESPG(), 27561u);
    EXPECT_EQ(geo.GetDocumentProjectionName(), "NTF (Paris) / Lambert Nord France");
    EXPECT_TRUE(geo.IsSame(Orvia::Gdal::SpatialReference::FromEpsg(27561).ExportWkt()));
    EXPECT_FALSE(geo.IsSame(Orvia::Gdal::SpatialReference::FromEpsg(27562).ExportWkt()));
    EXPECT_FALSE(geo.IsSame("not a projection"));

    // The centre is the plain projection of the default position; heights pass through.
    ExpectNear(geo.GetCenteringVector(),
               Project(27561, kDefaultLatitude, kDefaultLongitude, kDefaultElevation), kLocalToleranceM);
    EXPECT_NEAR(geo.GetCenteringVector().z, kDefaultElevation, kLocalToleranceM);

    vek::Vector3 local(1, 2, 3);
    ASSERT_TRUE(
        geo.GetOrviaCoord(vek::Vector3(kDefaultLatitude, kDefaultLongitude, kDefaultElevation), local));
    ExpectNear(local, vek::Vector3(), kLocalToleranceM);
    vek::Vector3 back;
    ASSERT_TRUE(geo.GetWgs84Coord(vek::Vector3(), back));
    EXPECT_NEAR(back.x, kDefaultLatitude, kAngleToleranceDeg);
    EXPECT_NEAR(back.y, kDefaultLongitude, kAngleToleranceDeg);
    EXPECT_NEAR(back.z, kDefaultElevation, kLocalToleranceM);

    // Latitude first on our side: a point north of the origin is ahead in y, one east of it in x.
    ASSERT_TRUE(geo.GetOrviaCoord(vek::Vector3(kDefaultLatitude + 0.01, kDefaultLongitude, 0.0), local));
    EXPECT_NEAR(local.y, 1112.0, 5.0);
    EXPECT_NEAR(local.x, 0.0, 30.0);  // meridian convergence only
    EXPECT_NEAR(local.z, -kDefaultElevation, kLocalToleranceM);

    // A copy keeps its own projection.
    Geolocalisation changed = geo;
    Geolocalisation copy = changed;
    ASSERT_TRUE(changed.SetTransformationParameters(4326));
    ASSERT_TRUE(copy.GetWgs84Coord(vek::Vector3(), back));
    EXPECT_NEAR(back.x, kDefaultLatitude, kAngleToleranceDeg);
}

TEST(Geolocalisation, SetTransformationParametersFromEpsg) {
    Geolocalisation geo;
    ASSERT_TRUE(geo.SetTransformationParameters(4326));
    EXPECT_EQ(geo.GetDocumentESPG(), 4326u);
    EXPECT_EQ(geo.GetDocumentProjectionName(), "WGS 84");
    EXPECT_EQ(geo.GetCenteringVector(), vek::Vector3());
    vek::Vector3 local;
    ASSERT_TRUE(geo.GetOrviaCoord(vek::Vector3(10.0, 20.0, 5.0), local));
    ExpectNear(local, vek::Vector3(20.0, 10.0, 5.0), 1e-9);

    ASSERT_TRUE(geo.SetTransformationParameters(27562));
    EXPECT_EQ(geo.GetDocumentESPG(), 27562u);
    EXPECT_EQ(geo.GetCenteringVector(), vek::Vector3());
    // Latitude and longitude now name the projected origin (0, 0).
    ASSERT_TRUE(geo.GetOrviaCoord(vek::Vector3(geo.GetLatitude(), geo.GetLongitude(), 0.0), local));
    ExpectNear(local, vek::Vector3(), kLocalToleranceM);

    // An unknown code changes nothing.
    const std::string centreWkt = geo.GetDocumentWKT();
    geo.CenterToLatLonPoint(46.5, 1.5);
    const vek::Vector3 centre = geo.GetCenteringVector();
    EXPECT_FALSE(geo.SetTransformationParameters(999999));
    EXPECT_EQ(geo.GetDocumentESPG(), 27562u);
    EXPECT_EQ(geo.GetDocumentWKT(), centreWkt);
    EXPECT_EQ(geo.GetCenteringVector(), centre);
    EXPECT_NEAR(geo.GetLatitude(), 46.5, kAngleToleranceDeg);
}

TEST(Geolocalisation, SetTransformationParametersFromText) {
    Geolocalisation geo;
    const std::string utm31 = Orvia::Gdal::SpatialReference::FromEpsg(32631).ExportWkt();
    ASSERT_TRUE(geo.SetTransformationParameters(utm31));
    EXPECT_EQ(geo.GetDocumentWKT(), utm31);
    EXPECT_EQ(geo.GetDocumentESPG(), 32631u);
    EXPECT_EQ(geo.GetCenteringVector(), vek::Vector3());
    vek::Vector3 local;
    ASSERT_TRUE(geo.GetOrviaCoord(vek::Vector3(0.0, 3.0, 0.0), local));  // central meridian on the equator
    ExpectNear(local, vek::Vector3(500000.0, 0.0, 0.0), kLocalToleranceM);

    // A PROJ.4 definition is kept as WKT.
    ASSERT_TRUE(geo.SetTransformationParameters("+proj=utm +zone=32 +datum=WGS84 +units=m +no_defs"));
    EXPECT_NE(geo.GetDocumentWKT().find("PROJCS"), std::string::npos);
    EXPECT_TRUE(geo.IsSame(Orvia::Gdal::SpatialReference::FromEpsg(32632).ExportWkt()));
    ASSERT_TRUE(geo.GetOrviaCoord(vek::Vector3(0.0, 9.0, 0.0), local));
    ExpectNear(local, vek::Vector3(500000.0, 0.0, 0.0), kLocalToleranceM);

    // Geographic WKT without a root authority takes its geographic system's code.
    const std::string anonymous =
        "GEOGCS[\"anonymous\",DATUM[\"WGS_1984\",SPHEROID[\"WGS 84\",6378137,298.257223563]],"
        "PRIMEM[\"Greenwich\",0],UNIT[\"degree\",0.0174532925199433]]";
    ASSERT_TRUE(geo.SetTransformationParameters(anonymous));
    EXPECT_EQ(geo.GetDocumentProjectionName(), "anonymous");
    EXPECT_EQ(geo.GetDocumentESPG(), 0u);

    // Neither WKT nor PROJ.4, or nothing at all: false, projection kept.
    ASSERT_TRUE(geo.SetTransformationParameters(utm31));
    geo.CenterToLatLonPoint(45.0, 2.0);
    const vek::Vector3 centre = geo.GetCenteringVector();
    for (const char* bad : {"not a projection", "", "PROJCS[\"cut\",GEOGCS["}) {
        testing::internal::CaptureStderr();
        EXPECT_FALSE(geo.SetTransformationParameters(std::string(bad))) << bad;
        EXPECT_EQ(testing::internal::GetCapturedStderr(), "") << bad;
        EXPECT_EQ(geo.GetDocumentWKT(), utm31);
        EXPECT_EQ(geo.GetDocumentESPG(), 32631u);
        EXPECT_EQ(geo.GetCenteringVector(), centre);
    }
}

TEST(Geolocalisation, MovingTheOrigin) {
    Geolocalisation geo;
    vek::Vector3 local;

    // Each setter recentres from scratch, not relative to the old centre.
    geo.SetLatitude(49.2);
    ExpectNear(geo.GetCenteringVector(), Project(27561, 49.2, kDefaultLongitude, kDefaultElevation),
               kLocalToleranceM);
    geo.SetLongitude(3.1);
    ExpectNear(geo.GetCenteringVector(), Project(27561, 49.2, 3.1, kDefaultElevation), kLocalToleranceM);
    geo.SetElevation(120.0);
    ExpectNear(geo.GetCenteringVector(), Project(27561, 49.2, 3.1, 120.0), kLocalToleranceM);

    // Centring on a point sets the centre at height 0 and keeps the elevation.
    geo.CenterToLatLonPoint(50.0, 2.0);
    EXPECT_DOUBLE_EQ(geo.GetElevation(), 120.0);
    ExpectNear(geo.GetCenteringVector(), Project(27561, 50.0, 2.0, 0.0), kLocalToleranceM);

    // Setting the centre moves latitude and longitude, not the elevation.
    const vek::Vector3 centre(610000.0, 210000.0, 5.0);
    geo.SetCenteringVector(centre);
    EXPECT_DOUBLE_EQ(geo.GetElevation(), 120.0);
    ASSERT_TRUE(geo.GetOrviaCoord(vek::Vector3(geo.GetLatitude(), geo.GetLongitude(), 5.0), local));
    ExpectNear(local, vek::Vector3(), kLocalToleranceM);

    // Outside the projection's domain: false and zero, and the setter leaves a zero centre.
    local = vek::Vector3(7, 7, 7);
    EXPECT_FALSE(geo.GetOrviaCoord(vek::Vector3(95.0, 2.0, 0.0), local));
    EXPECT_EQ(local, vek::Vector3());
    geo.SetLatitude(95.0);
    EXPECT_EQ(geo.GetCenteringVector(), vek::Vector3());
}

TEST(Geolocalisation, LambertCentreRoundTrip) {
    Geolocalisation geo;
    ASSERT_TRUE(geo.SetTransformationParameters(27562));
    geo.CenterToLatLonPoint(46.8, 2.4);
    const vek::Vector3 centre = geo.GetCenteringVector();

    std::mt19937 random(1000);
    std::uniform_real_distribution<double> randomX(kCentreMinX, kCentreMaxX);
    std::uniform_real_distribution<double> randomY(kCentreMinY, kCentreMaxY);
    std::uniform_real_distribution<double> randomZ(-100.0, 4000.0);
    for (int i = 0; i < 1000; ++i) {
        const vek::Vector3 local(randomX(random) - centre.x, randomY(random) - centre.y, randomZ(random));
        vek::Vector3 latLon;
        ASSERT_TRUE(geo.GetWgs84Coord(local, latLon));
        ASSERT_TRUE(latLon.x > 41.0 && latLon.x < 52.0 && latLon.y > -6.0 && latLon.y < 11.0)
            << latLon.x << ", " << latLon.y;
        vek::Vector3 back;
        ASSERT_TRUE(geo.GetOrviaCoord(latLon, back));
        ASSERT_NEAR(back.x, local.x, kLocalToleranceM);
        ASSERT_NEAR(back.y, local.y, kLocalToleranceM);
        ASSERT_NEAR(back.z, local.z, kLocalToleranceM);
    }
}

TEST(Geolocalisation, WithoutProjectionConversionsFail) {
    Geolocalisation geo;
    geo.CenterToLatLonPoint(47.0, 1.0);
    geo.SetWkt("");
    geo.PostLoad(nullptr);
    EXPECT_EQ(geo.GetDocumentProjectionName(), "");
    EXPECT_NEAR(geo.GetLatitude(), 47.0, kAngleToleranceDeg);  // the stored position is kept
    vek::Vector3 result(1, 1, 1);
    EXPECT_FALSE(geo.GetWgs84Coord(vek::Vector3(), result));
    EXPECT_EQ(result, vek::Vector3());
    EXPECT_FALSE(geo.GenerateOSGEarthFile(TempPath("none.earth").c_str()));
}

TEST(Geolocalisation, SaveAndLoad) {
    Orvia::Init(Ruvex::Encoding::GetMode());
    Geolocalisation geo;
    ASSERT_TRUE(geo.SetTransformationParameters(27562));
    geo.CenterToLatLonPoint(46.2, 3.3);
    const std::string path = TempPath("geo.xml");
    ASSERT_TRUE(geo.Save(path.c_str()));

    CountedPtr<Geolocalisation> loaded(Geolocalisation::Load(path.c_str()));
    ASSERT_TRUE(loaded);
    EXPECT_EQ(loaded->GetDocumentESPG(), 27562u);
    EXPECT_EQ(loaded->GetDocumentWKT(), geo.GetDocumentWKT());
    EXPECT_EQ(loaded->GetCenteringVector(), geo.GetCenteringVector());
    vek::Vector3 local;
    ASSERT_TRUE(loaded->GetOrviaCoord(vek::Vector3(46.2, 3.3, 0.0), local));
    ExpectNear(local, vek::Vector3(), kLocalToleranceM);
    std::remove(path.c_str());

    // Another root, or no file: null.
    const std::string imagePath = TempPath("image.xml");
    CountedPtr<BackGroundImage> image(new BackGroundImage);
    ASSERT_TRUE(Ruvex::Save(image.Get(), imagePath.c_str()));
    EXPECT_EQ(Geolocalisation::Load(imagePath.c_str()), nullptr);
    EXPECT_EQ(Geolocalisation::Load(TempPath("missing.xml").c_str()), nullptr);
    std::remove(imagePath.c_str());
}

TEST(Geolocalisation, GenerateOSGEarthFile) {
    Geolocalisation geo;
    ASSERT_TRUE(geo.SetTransformationParameters(27562));
    geo.CenterToLatLonPoint(46.5, 2.0);
    BackGroundImage image;
    image.SetFilePath("maps/aerial & \"old\".png");
    image.SetCameraIndex(2);
    image.SetOffset(vek::Vector2(-100.0, -50.0));
    image.SetDimension(vek::Vector2(400.0, 300.0));

    const std::string path = TempPath("scene.earth");
    ASSERT_TRUE(geo.GenerateOSGEarthFile(path.c_str(), &image));
    pugi::xml_document doc;
    ASSERT_TRUE(doc.load_file(path.c_str()));
    const pugi::xml_node map = doc.child("map");
    EXPECT_STREQ(map.attribute("type").value(), "projected");
    const pugi::xml_node profile = map.child("options").child("profile");
    EXPECT_TRUE(geo.IsSame(profile.attribute("srs").value()));
    EXPECT_DOUBLE_EQ(profile.attribute("xmin").as_double(), kCentreMinX);
    EXPECT_DOUBLE_EQ(profile.attribute("ymax").as_double(), kCentreMaxY);

    const pugi::xml_node layer = map.child("image");
    EXPECT_STREQ(layer.child_value("url"), "maps/aerial & \"old\".png");
    const vek::Vector3& centre = geo.GetCenteringVector();
    EXPECT_DOUBLE_EQ(layer.child("profile").attribute("xmin").as_double(), centre.x - 100.0);
    EXPECT_DOUBLE_EQ(layer.child("profile").attribute("ymax").as_double(), centre.y - 50.0 + 300.0);

    const pugi::xml_node viewpoint = map.child("viewpoints").child("viewpoint");
    EXPECT_DOUBLE_EQ(viewpoint.attribute("lat").as_double(), geo.GetLatitude());
    EXPECT_DOUBLE_EQ(viewpoint.attribute("long").as_double(), geo.GetLongitude());

    // Without an image, and in a system of unknown extent: no layer, no profile extent.
    const Geolocalisation nord;
    ASSERT_TRUE(nord.GenerateOSGEarthFile(path.c_str()));
    ASSERT_TRUE(doc.load_file(path.c_str()));
    EXPECT_FALSE(doc.child("map").child("image"));
    EXPECT_FALSE(doc.child("map").child("options").child("profile").attribute("xmin"));
    std::remove(path.c_str());

    EXPECT_FALSE(nord.GenerateOSGEarthFile(nullptr));
    EXPECT_FALSE(nord.GenerateOSGEarthFile((path + "/no/such/dir.earth").c_str()));
}

TEST(BackGroundImage, LoadSaveAndCopy) {
    // Defaults are written out too.
    BackGroundImage plain;
    EXPECT_NE(Ruvex::SaveToString(&plain).find(
                  R"(cameraIndex="0" dimensionX="0" dimensionY="0" offsetX="0" offsetY="0" rotation="0")"),
              std::string::npos);

    const char* full =
        R"(filePath="ortho.jpg" flipped="true" cameraIndex="3" dimensionX="640" dimensionY="480" )"
        R"(offsetX="-12.5" offsetY="7" rotation="0.5")";
    const std::string text = R"(<Ruvex version="2.5"><Network><BackgroundImage )" + std::string(full) +
                             R"( extra="kept"/></Network></Ruvex>)";
    CountedPtr<Orvia::Network> network(Orvia::Network::Load(text.c_str(), 0, {}));
    ASSERT_TRUE(network);
    BackGroundImage* image = network->GetBackGroundImage(3);
    ASSERT_NE(image, nullptr);
    EXPECT_EQ(image->GetDimension(), vek::Vector2(640.0, 480.0));
    EXPECT_EQ(image->GetOffset(), vek::Vector2(-12.5, 7.0));
    // Written back in declaration order, the file reference first, each attribute once.
    const std::string again = Ruvex::SaveToString(image);
    EXPECT_NE(again.find(std::string(full) + R"( extra="kept")"), std::string::npos) << again;
    EXPECT_EQ(again.find("cameraIndex"), again.rfind("cameraIndex"));

    BackGroundImage copy;
    copy.CopyFrom(image);
    copy.CopyFrom(static_cast<const BackGroundImage*>(nullptr));
    EXPECT_NE(Ruvex::SaveToString(&copy).find(full), std::string::npos);
}

TEST(ExternalElement, CopyKeepsItsOwnTag) {
    Orvia::ExternalElement terrain("ExternalTerrain", "terrain/ground.osgb");
    terrain.SetFlipped(true);
    Orvia::ExternalElement surface("ExternalSurface");
    surface.CopyFrom(&terrain);
    EXPECT_NE(Ruvex::SaveToString(&surface).find(
                  R"(<ExternalSurface filePath="terrain/ground.osgb" flipped="true")"),
              std::string::npos);
}
