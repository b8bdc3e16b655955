#include <orvia/rail/rail_network.h>

namespace Rail {

RailNetwork::~RailNetwork() = default;
RailroadTrack::~RailroadTrack() = default;
Switch::~Switch() = default;
Crossing::~Crossing() = default;
ConnectionReference::ConnectionReference() : Orvia::ReferenceElement("ConnectionReference") {}
ConnectionReference::~ConnectionReference() = default;
Signal::~Signal() = default;
Balise::~Balise() = default;
TelegramCalculator::~TelegramCalculator() = default;
TrainDetection::~TrainDetection() = default;
DoubleProperty::~DoubleProperty() = default;
EnumProperty::~EnumProperty() = default;

}  // namespace Rail
