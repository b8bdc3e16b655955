#include "../../core/gdal_support.h"

#include <cpl_error.h>
#include <gtest/gtest.h>

#include <cmath>
#include <numbers>
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

TEST(GdalSpatialReference, BuiltInLambertNordFranceAndOtherSources) {
    const SpatialReference builtIn = SpatialReference::FromWkt(Orvia::Gdal::kLambertNordFranceWkt);
    ASSERT_FALSE(builtIn.IsEmpty()) << Orvia::Gdal::LastErrorMessage();
    EXPECT_TRUE(builtIn.IsProjected());
    EXPECT_EQ(builtIn.GetEpsgCode(), Orvia::Gdal::kLambertNordFranceEpsg);
    EXPECT_EQ(builtIn.GetGeographicEpsgCode(), 4807);
    EXPECT_EQ(builtIn.GetAttribute("AUTHORITY", 1).value_or(""), "27561");
    EXPECT_FALSE(builtIn.GetAttribute("NO_SUCH_NODE").has_value());

    EXPECT_TRUE(builtIn.IsSame(SpatialReference::FromEpsg(27561)));
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

    // A PROJ.4 string carries no authority; an empty reference is like nothing, not even itself.
    EXPECT_EQ(SpatialReference::FromProj4("+proj=utm +zone=31 +datum=WGS84 +units=m +no_defs").GetEpsgCode(),
              0);
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

TEST(GdalDataLocation, SetAndUnset) {
    const std::string before = Orvia::Gdal::GetDataLocation();
    Orvia::Gdal::SetDataLocation("/opt/orvia/gdal-data");
    EXPECT_EQ(Orvia::Gdal::GetDataLocation(), "/opt/orvia/gdal-data");
    Orvia::Gdal::SetDataLocation(nullptr);
    EXPECT_EQ(Orvia::Gdal::GetDataLocation(), before);
}
