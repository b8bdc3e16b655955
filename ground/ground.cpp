#include <orvia/ground/ground.h>

namespace Orvia {

Ground::~Ground() = default;
Roughness::~Roughness() = default;
Analytic::~Analytic() = default;

Point2x2D::Point2x2D(double value0, double value1, double value2, double value3, double value4,
                     const std::string& tag)
    : Ruvex::Point2x2DElement(tag) {
    m_Value0 = value0;
    m_Value1 = value1;
    m_Value2 = value2;
    m_Value3 = value3;
    m_Value4 = value4;
}
Point2x2D::~Point2x2D() = default;

SoftGroundPropertiesElement::~SoftGroundPropertiesElement() = default;
FunctionalGroundElement::~FunctionalGroundElement() = default;
TerramecanicsGroundElement::~TerramecanicsGroundElement() = default;

}  // namespace Orvia
