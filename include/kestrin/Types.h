// Basic types shared by the application and its add-ons.
#pragma once

#include <cstddef>
#include <cstdint>

namespace kestrin {

using int8 = std::int8_t;
using int32 = std::int32_t;
using int64 = std::int64_t;
using uint8 = std::uint8_t;
using uint32 = std::uint32_t;
using uint64 = std::uint64_t;

/// Result of an operation: StatusOk, or a negative number (one of the two below, or -errno).
using status_t = int32;
inline constexpr status_t StatusOk = 0;
inline constexpr status_t StatusError = -1;
inline constexpr status_t StatusFileError = INT32_MIN + 0x6000;

/// How much a notification presses; the numbers are those of the desktop's service.
enum NotificationUrgency : uint8 { UrgencyLow = 0, UrgencyNormal = 1, UrgencyCritical = 2 };

/// Screen rectangle in pixels, edges inclusive, as stored in set files.
struct Rect {
  float left = 0, top = 0, right = -1, bottom = -1;
  bool operator==(const Rect&) const = default;
};

struct Point {
  float x = 0, y = 0;
  bool operator==(const Point&) const = default;
};

}  // namespace kestrin
