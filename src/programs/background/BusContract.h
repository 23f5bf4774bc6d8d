// Names and codes of docs/bus.md, as far as the background deliverer needs them.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

inline constexpr char ApplicationBusName[] = "vnd.ZR.Kestrin";
inline constexpr char ApplicationObject[] = "/vnd/ZR/Kestrin";
inline constexpr char BackgroundBusName[] = "vnd.ZR.KestrinBackground";
inline constexpr char BackgroundObject[] = "/vnd/ZR/KestrinBackground";
inline constexpr char MessagesInterface[] = "vnd.ZR.Kestrin.Messages";

inline constexpr uint32 NextEventCode = 0x53657445;      // 'SetE'
inline constexpr uint32 DeliverEventsCode = 0x44656C45;  // 'DelE'
inline constexpr uint32 QuitRequestedCode = 0x5F515251;  // '_QRQ'

inline constexpr char UnknownMessageError[] = "vnd.ZR.Kestrin.Error.UnknownMessage";
inline constexpr char BadFieldError[] = "vnd.ZR.Kestrin.Error.BadField";

}  // namespace kestrin
