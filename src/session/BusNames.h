// What the two programs are called on the session bus; docs/bus.md holds the whole contract.
#pragma once

namespace kestrin {

inline constexpr char ApplicationBusName[] = "vnd.ZR.Kestrin";
inline constexpr char ApplicationObject[] = "/vnd/ZR/Kestrin";
inline constexpr char BackgroundBusName[] = "vnd.ZR.KestrinBackground";
inline constexpr char BackgroundObject[] = "/vnd/ZR/KestrinBackground";

inline constexpr char MessagesInterface[] = "vnd.ZR.Kestrin.Messages";
inline constexpr char ApplicationInterface[] = "org.freedesktop.Application";

inline constexpr char UnknownMessageError[] = "vnd.ZR.Kestrin.Error.UnknownMessage";
inline constexpr char BadFieldError[] = "vnd.ZR.Kestrin.Error.BadField";
inline constexpr char NotKeptError[] = "vnd.ZR.Kestrin.Error.NotKept";
inline constexpr char InvalidArgumentsError[] = "org.freedesktop.DBus.Error.InvalidArgs";
inline constexpr char UnknownMethodError[] = "org.freedesktop.DBus.Error.UnknownMethod";

/// The action of the desktop entry, by ActivateAction.
inline constexpr char NewEventSetAction[] = "new-event-set";
/// Key of the platform data of Open (bool): open the files without windows.
inline constexpr char BackgroundKey[] = "vnd.ZR.background";

}  // namespace kestrin
