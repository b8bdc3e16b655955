#pragma once

// The rail description: railroad tracks, the switches and crossings that join them, equipment on the line
// and typed properties along it.

#include <orvia/core/reference.h>
#include <orvia/ruvex/elements/rail.h>

namespace Rail {

class RailNetwork : public RailNetworkElement {
public:
    ~RailNetwork() override;
};

class RailroadTrack : public RailroadTrackElement {
public:
    ~RailroadTrack() override;
};

class Switch : public SwitchElement {
public:
    ~Switch() override;
};

class Crossing : public CrossingElement {
public:
    ~Crossing() override;
};

// The reference from a connection point to its switch or crossing; saved as "ConnectionReference".
class ConnectionReference : public Orvia::ReferenceElement {
public:
    ConnectionReference();
    ~ConnectionReference() override;
};

class Signal : public SignalElement {
public:
    ~Signal() override;
};

class Balise : public BaliseElement {
public:
    ~Balise() override;
};

class TelegramCalculator : public TelegramCalculatorElement {
public:
    ~TelegramCalculator() override;
};

class TrainDetection : public TrainDetectionElement {
public:
    ~TrainDetection() override;
};

class DoubleProperty : public DoublePropertyElement {
public:
    ~DoubleProperty() override;
};

class EnumProperty : public EnumPropertyElement {
public:
    ~EnumProperty() override;
};

}  // namespace Rail
