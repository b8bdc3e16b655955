#include <orvia/ruvex/elements/ground.h>

namespace Ruvex {

RUVEX_SCHEMA(Point2x2DElement, Element, "Point2x2D", RUVEX_POINT_2X2D_TABLE)
RUVEX_SCHEMA(RoughnessAnalyticElement, Element, "RoughnessAnalytic", RUVEX_ROUGHNESS_ANALYTIC_TABLE)
RUVEX_SCHEMA(RoughnessElement, Element, "Roughness", RUVEX_ROUGHNESS_TABLE)
RUVEX_SCHEMA(TerraMecanicsModelElement, Element, "TerraMecanicsModel", RUVEX_TERRA_MECANICS_MODEL_TABLE)
RUVEX_SCHEMA(FunctionalModelElement, Element, "FunctionalModel", RUVEX_FUNCTIONAL_MODEL_TABLE)
RUVEX_SCHEMA(SoftGroundPropertiesElement, Element, "SoftGroundProperties", RUVEX_SOFT_GROUND_PROPERTIES_TABLE)
RUVEX_SCHEMA(GroundElement, NamedElement, "Ground", RUVEX_GROUND_TABLE)

Point2x2DElement::Point2x2DElement(const std::string& tag) : Point2x2DElement() {
    m_tag = tag;
    if (tag == "Scale2x2DPoints") m_Value0 = m_Value1 = m_Value2 = m_Value3 = m_Value4 = 1.0;
}

}  // namespace Ruvex
