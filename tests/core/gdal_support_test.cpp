#include "../../core/gdal_support.h"

#include <cpl_error.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <numbers>
#include <random>
#include <string>

namespace {

using Orvia::Gdal::CoordinateTransformation;
using Orvia::Gdal::SpatialReference;

// Projected coordinates are compared to the millimetre: far above the round-off of a projection and
// its inverse (micrometres), far below any real mistake (datum, unit or axis).
constexpr double kProjectedToleranceM = 1e-3;
// Geographic coordinates of a point carried through a datum change: EPSG quotes 2 m for the
// three-parameter NTF -> WGS84 transformation.
constexpr double kDatumShiftToleranceM = 2.0;
constexpr double kMetresPerDegree = 111320.0;  // along a meridian, near enough for tolerances

// Bounds of EPSG 27562 "NTF (Paris) / Lambert Centre France", metres.
constexpr double kCentreMinX = 50198.0586;
constexpr double kCentreMaxX = 1016966.9382;
constexpr double kCentreMinY = 64100.6841;
constexpr double kCentreMaxY = 373525.1009;

// Geodetic (degrees, ellipsoidal height 0) -> geocentric metres.
void GeodeticToGeocentric(double a, double e2, double latDeg, double lonDeg, double xyz[3]) {
    const double lat = latDeg * std::numbers::pi / 180.0;
    const double lon = lonDeg * std::numbers::pi / 180.0;
    const double n = a / std::sqrt(1.0 - e2 * std::sin(lat) * std::sin(lat));
    xyz[0] = n * std::cos(lat) * std::cos(lon);
    xyz[1] = n * std::cos(lat) * std::sin(lon);
    xyz[2] = n * (1.0 - e2) * std::sin(lat);
}

// Geocentric metres -> geodetic degrees, by fixed-point iteration on the latitude.
void GeocentricToGeodetic(double a, double e2, const double xyz[3], double& latDeg, double& lonDeg) {
    const double p = std::hypot(xyz[0], xyz[1]);
    double lat = std::atan2(xyz[2], p * (1.0 - e2));
    for (int i = 0; i < 10; ++i) {
        const double n = a / std::sqrt(1.0 - e2 * std::sin(lat) * std::sin(lat));
        const double h = p / std::cos(lat) - n;
        lat = std::atan2(xyz[2], p * (1.0 - e2 * n / (n + h)));
    }
    latDeg = lat * 180.0 / std::numbers::pi;
    lonDeg = std::atan2(xyz[1], xyz[0]) * 180.0 / std::numbers::pi;
}

// Runs `body` with the process's stderr captured and returns what was written to it.
template <typename Body>
std::string StderrOf(Body body) {
    testing::internal::CaptureStderr();
    body();
    return testing::internal::GetCapturedStderr();
}

}  // namespace

TEST(GdalQuietErrorScope, CapturesInsteadOfPrinting) {
    std::string outer;
    std::string inner;
    bool innerFailure = false;
    const std::string printed = StderrOf([&] {
        Orvia::Gdal::QuietErrorScope outerScope;
        CPLError(CE_Warning, CPLE_AppDefined, "outer warning");
        {
            Orvia::Gdal::QuietErrorScope innerScope;
            CPLError(CE_Failure, CPLE_AppDefined, "inner failure");
            CPLError(CE_Warning, CPLE_AppDefined, "later warning");  // must not hide the failure
            CPLDebug("ORVIA", "debug chatter");
            inner = innerScope.Message();
            innerFailure = innerScope.HasFailure();
        }
        outer = outerScope.Message();
        EXPECT_FALSE(outerScope.HasFailure());
    });
    EXPECT_EQ(inner, "inner failure");
    EXPECT_TRUE(innerFailure);
    EXPECT_EQ(outer, "outer warning");
    EXPECT_EQ(printed, "");
}

TEST(GdalSpatialReference, BuiltInLambertNordFrance) {
    const SpatialReference builtIn = SpatialReference::FromWkt(Orvia::Gdal::kLambertNordFranceWkt);
    ASSERT_FALSE(builtIn.IsEmpty()) << Orvia::Gdal::LastErrorMessage();
    EXPECT_TRUE(builtIn.IsProjected());
    EXPECT_EQ(builtIn.GetEpsgCode(), Orvia::Gdal::kLambertNordFranceEpsg);
    EXPECT_EQ(builtIn.GetGeographicEpsgCode(), 4807);
    EXPECT_EQ(builtIn.GetAttribute("PROJCS").value_or(""), "NTF (Paris) / Lambert Nord France");
    EXPECT_EQ(builtIn.GetAttribute("GEOGCS").value_or(""), "NTF (Paris)");
    EXPECT_EQ(builtIn.GetAttribute("AUTHORITY", 1).value_or(""), "27561");
    EXPECT_FALSE(builtIn.GetAttribute("NO_SUCH_NODE").has_value());

    const SpatialReference fromDatabase = SpatialReference::FromEpsg(27561);
    ASSERT_FALSE(fromDatabase.IsEmpty());
    EXPECT_TRUE(builtIn.IsSame(fromDatabase));
    EXPECT_FALSE(builtIn.IsSame(SpatialReference::FromEpsg(27562)));

    // Both exports read back as the same system; the copy outlives its original.
    SpatialReference copy;
    {
        const SpatialReference reread = SpatialReference::FromWkt(builtIn.ExportPrettyWkt());
        EXPECT_TRUE(reread.IsSame(builtIn));
        copy = reread;
    }
    EXPECT_TRUE(copy.IsSame(builtIn));
    EXPECT_NE(builtIn.ExportPrettyWkt().find('\n'), std::string::npos);
    EXPECT_EQ(builtIn.ExportWkt().find('\n'), std::string::npos);
    EXPECT_TRUE(SpatialReference::FromWkt(builtIn.ExportWkt()).IsSame(builtIn));
}

TEST(GdalSpatialReference, OtherSources) {
    const SpatialReference wgs84 = SpatialReference::Wgs84();
    ASSERT_FALSE(wgs84.IsEmpty());
    EXPECT_FALSE(wgs84.IsProjected());
    EXPECT_EQ(wgs84.GetEpsgCode(), 4326);
    EXPECT_TRUE(wgs84.IsSame(SpatialReference::FromEpsg(4326)));

    const SpatialReference utm =
        SpatialReference::FromProj4("+proj=utm +zone=31 +datum=WGS84 +units=m +no_defs");
    ASSERT_FALSE(utm.IsEmpty());
    EXPECT_TRUE(utm.IsProjected());
    EXPECT_EQ(utm.GetEpsgCode(), 0);  // a PROJ.4 string carries no authority
    EXPECT_EQ(utm.GetGeographicEpsgCode(), 0);
    EXPECT_TRUE(utm.IsSame(SpatialReference::FromEpsg(32631)));

    const SpatialReference empty;
    EXPECT_EQ(empty.ExportWkt(), "");
    EXPECT_FALSE(empty.IsSame(empty));
}

TEST(GdalSpatialReference, BadDefinitionsFailQuietly) {
    const std::string printed = StderrOf([] {
        SpatialReference srs = SpatialReference::Wgs84();
        EXPECT_FALSE(srs.ImportEpsg(999999));
        EXPECT_TRUE(srs.IsEmpty());
        EXPECT_NE(Orvia::Gdal::LastErrorMessage().find("not found"), std::string::npos)
            << Orvia::Gdal::LastErrorMessage();

        EXPECT_FALSE(srs.ImportWkt("not a projection"));
        EXPECT_FALSE(Orvia::Gdal::LastErrorMessage().empty());
        EXPECT_FALSE(srs.ImportWkt("PROJCS[\"cut\",GEOGCS["));
        EXPECT_FALSE(srs.ImportWkt(""));
        EXPECT_FALSE(srs.ImportProj4("not a projection"));
        EXPECT_FALSE(srs.ImportProj4("+proj=nosuchprojection +ellps=WGS84"));
        EXPECT_NE(Orvia::Gdal::LastErrorMessage().find("projection"), std::string::npos)
            << Orvia::Gdal::LastErrorMessage();
        EXPECT_TRUE(srs.IsEmpty());

        CoordinateTransformation transform;
        EXPECT_FALSE(transform.Create(srs, SpatialReference::Wgs84()));
        double x = 1.0;
        double y = 2.0;
        double z = 3.0;
        EXPECT_FALSE(transform.Transform(x, y, z));
        EXPECT_EQ(x, 1.0);

        // A latitude beyond the pole has no projection: failure, point untouched.
        const CoordinateTransformation toCentre =
            CoordinateTransformation::Between(SpatialReference::Wgs84(), SpatialReference::FromEpsg(27562));
        ASSERT_FALSE(toCentre.IsEmpty());
        x = 2.0;
        y = 95.0;
        z = 0.0;
        EXPECT_FALSE(toCentre.Transform(x, y, z));
        EXPECT_EQ(x, 2.0);
        EXPECT_EQ(y, 95.0);
        x = std::nan("");
        EXPECT_FALSE(toCentre.Transform(x, y, z));
    });
    EXPECT_EQ(printed, "");
}

TEST(GdalCoordinateTransformation, LongitudeFirst) {
    // UTM zone 31 north is centred on 3 degrees east: the equator there maps to (500000, 0) exactly.
    const CoordinateTransformation toUtm = CoordinateTransformation::Between(
        SpatialReference::FromEpsg(4326), SpatialReference::FromEpsg(32631));
    ASSERT_FALSE(toUtm.IsEmpty());
    double x = 3.0;
    double y = 0.0;
    double z = 0.0;
    ASSERT_TRUE(toUtm.Transform(x, y, z));
    EXPECT_NEAR(x, 500000.0, kProjectedToleranceM);
    EXPECT_NEAR(y, 0.0, kProjectedToleranceM);

    // Longitude first on both sides even though EPSG 4326 is latitude first by authority.
    const CoordinateTransformation identity =
        CoordinateTransformation::Between(SpatialReference::Wgs84(), SpatialReference::FromEpsg(4326));
    x = 2.0;
    y = 48.0;
    ASSERT_TRUE(identity.Transform(x, y, z));
    EXPECT_DOUBLE_EQ(x, 2.0);
    EXPECT_DOUBLE_EQ(y, 48.0);
}

TEST(GdalCoordinateTransformation, LambertNordFranceOrigin) {
    // The natural origin, latitude 55 grads = 49.5 degrees on the Paris meridian (2.33722917 degrees east
    // of Greenwich), is (600000, 200000) by definition of the projection, on the NTF datum.
    const SpatialReference nordFrance = SpatialReference::FromWkt(Orvia::Gdal::kLambertNordFranceWkt);
    const double originLat = 49.5;
    const double originLonGreenwich = 2.33722917;
    const CoordinateTransformation fromNtf =
        CoordinateTransformation::Between(SpatialReference::FromEpsg(4275), nordFrance);
    ASSERT_FALSE(fromNtf.IsEmpty()) << Orvia::Gdal::LastErrorMessage();
    double x = originLonGreenwich;
    double y = originLat;
    double z = 0.0;
    ASSERT_TRUE(fromNtf.Transform(x, y, z));
    EXPECT_NEAR(x, 600000.0, kProjectedToleranceM);
    EXPECT_NEAR(y, 200000.0, kProjectedToleranceM);

    // In WGS84 the same point moves by the NTF datum shift, computed here independently from the EPSG
    // parameters (Clarke 1880 IGN ellipsoid, translation -168, -60, +320 m).
    double geocentric[3];
    GeodeticToGeocentric(6378249.2, 1.0 - std::pow(6356515.0 / 6378249.2, 2), originLat, originLonGreenwich,
                         geocentric);
    geocentric[0] += -168.0;
    geocentric[1] += -60.0;
    geocentric[2] += 320.0;
    const double wgs84F = 1.0 / 298.257223563;
    double expectedLat = 0.0;
    double expectedLon = 0.0;
    GeocentricToGeodetic(6378137.0, wgs84F * (2.0 - wgs84F), geocentric, expectedLat, expectedLon);

    const CoordinateTransformation toWgs84 =
        CoordinateTransformation::Between(nordFrance, SpatialReference::Wgs84());
    x = 600000.0;
    y = 200000.0;
    z = 0.0;
    ASSERT_TRUE(toWgs84.Transform(x, y, z));
    const double metresPerDegreeLon = kMetresPerDegree * std::cos(originLat * std::numbers::pi / 180.0);
    EXPECT_NEAR(x, expectedLon, kDatumShiftToleranceM / metresPerDegreeLon);
    EXPECT_NEAR(y, expectedLat, kDatumShiftToleranceM / kMetresPerDegree);
    // The shift is real: forgetting the datum would land about a hundred metres away.
    EXPECT_GT(std::abs(x - originLonGreenwich) * metresPerDegreeLon, 50.0);
}

TEST(GdalCoordinateTransformation, LambertCentreRoundTrip) {
    const SpatialReference centre = SpatialReference::FromEpsg(27562);
    const SpatialReference wgs84 = SpatialReference::Wgs84();
    const CoordinateTransformation toWgs84 = CoordinateTransformation::Between(centre, wgs84);
    const CoordinateTransformation toCentre = CoordinateTransformation::Between(wgs84, centre);
    ASSERT_FALSE(toWgs84.IsEmpty());
    ASSERT_FALSE(toCentre.IsEmpty());

    std::mt19937 random(27562);
    std::uniform_real_distribution<double> randomX(kCentreMinX, kCentreMaxX);
    std::uniform_real_distribution<double> randomY(kCentreMinY, kCentreMaxY);
    for (int i = 0; i < 1000; ++i) {
        const double x0 = randomX(random);
        const double y0 = randomY(random);
        double x = x0;
        double y = y0;
        double z = 0.0;
        ASSERT_TRUE(toWgs84.Transform(x, y, z));
        // Longitude first: France lies between 5 degrees west and 10 east, 41 and 52 north.
        ASSERT_TRUE(x > -6.0 && x < 11.0 && y > 41.0 && y < 52.0) << x << ", " << y;
        ASSERT_TRUE(toCentre.Transform(x, y, z));
        ASSERT_NEAR(x, x0, kProjectedToleranceM);
        ASSERT_NEAR(y, y0, kProjectedToleranceM);
    }
}

TEST(GdalDataLocation, SetAndUnset) {
    const bool fromEnvironment = std::getenv("GDAL_DATA") != nullptr;
    const std::string before = Orvia::Gdal::GetDataLocation();
    if (!fromEnvironment) {
        EXPECT_EQ(before, Orvia::Gdal::kDataLocationUndefined);
    }

    Orvia::Gdal::SetDataLocation("/opt/orvia/gdal-data");
    EXPECT_EQ(Orvia::Gdal::GetDataLocation(), "/opt/orvia/gdal-data");
    Orvia::Gdal::SetDataLocation(nullptr);
    EXPECT_EQ(Orvia::Gdal::GetDataLocation(), before);
}
