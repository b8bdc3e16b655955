#pragma once

// Tags that one class serves under several names (each object keeps the tag it was made for), named once for
// the tables that map tags to classes: the element layer's registry and the library's factory. Template
// arguments need them as objects with linkage, not as string literals.

namespace Ruvex::Tags {

inline constexpr char kSZCurve[] = "SZCurve";
inline constexpr char kBankingCurve[] = "BankingCurve";
inline constexpr char kTrajectoryCurve[] = "TrajectoryCurve";
inline constexpr char kSZCurvatureCurve[] = "SZCurvatureCurve";
inline constexpr char kExternalElement[] = "ExternalElement";
inline constexpr char kExternalSurface[] = "ExternalSurface";
inline constexpr char kExternalTerrain[] = "ExternalTerrain";
inline constexpr char kExternalPhysicSurface[] = "ExternalPhysicSurface";
inline constexpr char kProxyFile[] = "ProxyFile";
inline constexpr char kSequence[] = "Sequence";
inline constexpr char kSequenceY[] = "SequenceY";
inline constexpr char kSequenceZ[] = "SequenceZ";
inline constexpr char kTrackClippedData[] = "TrackClippedData";
inline constexpr char kClippedData[] = "ClippedData";
inline constexpr char kPoint2x2D[] = "Point2x2D";
inline constexpr char kScale2x2DPoints[] = "Scale2x2DPoints";
inline constexpr char kOffset2x2DPoints[] = "Offset2x2DPoints";
inline constexpr char kDiffuse[] = "Diffuse";
inline constexpr char kAmbient[] = "Ambient";
inline constexpr char kSpecular[] = "Specular";
inline constexpr char kEmissive[] = "Emissive";
inline constexpr char kBump[] = "Bump";
inline constexpr char kOpacity[] = "Opacity";
inline constexpr char kReflection[] = "Reflection";
inline constexpr char kShininess[] = "Shininess";
inline constexpr char kVersion[] = "Version";
inline constexpr char kQorVersion[] = "QorVersion";
inline constexpr char kOpenEnd[] = "OpenEnd";
inline constexpr char kBufferEnd[] = "BufferEnd";
inline constexpr char kLinkedEnd[] = "LinkedEnd";
inline constexpr char kSwitchEnd[] = "SwitchEnd";
inline constexpr char kDoublePropertyValue[] = "DoublePropertyValue";
inline constexpr char kEnumPropertyValue[] = "EnumPropertyValue";
inline constexpr char kTunnel[] = "Tunnel";
inline constexpr char kBridge[] = "Bridge";
inline constexpr char kGantry[] = "Gantry";
inline constexpr char kPlatform[] = "Platform";
inline constexpr char kLevelCrossing[] = "LevelCrossing";
inline constexpr char kRoadArea[] = "RoadArea";
inline constexpr char kRadioAntena[] = "RadioAntena";
inline constexpr char kAreaTelegramCalculator[] = "AreaTelegramCalculator";

}  // namespace Ruvex::Tags
