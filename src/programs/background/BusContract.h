// Codes of docs/bus.md, as far as the background deliverer needs them, beside the names.
#pragma once

#include "kestrin/Types.h"

namespace kestrin {

inline constexpr uint32 NextEventCode = 0x53657445;      // 'SetE'
inline constexpr uint32 DeliverEventsCode = 0x44656C45;  // 'DelE'
inline constexpr uint32 QuitRequestedCode = 0x5F515251;  // '_QRQ'

}  // namespace kestrin
