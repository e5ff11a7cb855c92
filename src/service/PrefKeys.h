#pragma once

namespace murmeli {

/// A preference: its key in prefs.json, and what holds while the file says nothing of that type. The service
/// assumes the same defaults.
template <typename T>
struct PrefKey {
    const char* name;
    T fallback;
};

/// A whole number with bounds; of one outside of them the nearest bound counts.
struct NumberPrefKey {
    const char* name;
    int fallback;
    int least;
    int most;
};

namespace pref {

inline constexpr PrefKey<bool> autoRecord{"auto_record", true};
inline constexpr PrefKey<bool> notifications{"notifications", true};
inline constexpr PrefKey<bool> launchAtLogin{"launch_at_login", true};
inline constexpr PrefKey<bool> sendTelegram{"send_telegram", true};
inline constexpr PrefKey<bool> deleteSourceOnSuccess{"delete_source_on_success", true};
inline constexpr PrefKey<const char*> protocolFormat{"protocol_format", "full"}; ///< or "short"
inline constexpr PrefKey<const char*> locale{"locale", ""}; ///< "ru", "en"; else the desktop's
inline constexpr NumberPrefKey keepSourceDays{"keep_source_days", 3, 1, 30};
inline constexpr NumberPrefKey maxRecordHours{"max_record_hours", 3, 1, 6};

inline constexpr PrefKey<const char*> glossary{"glossary", ""}; ///< a copy for the service
/// There while the copy holds what the backend has not got yet: what both had last.
inline constexpr PrefKey<const char*> glossaryBase{"glossary_base", ""};
/// Whose words the copy holds: the account's identifier.
inline constexpr PrefKey<const char*> glossaryPerson{"glossary_person", ""};
/// What could not be sent before somebody else signed in, by the account: "text" and its "base".
inline constexpr auto glossaryUnsent = "glossary_unsent";

} // namespace pref

} // namespace murmeli
