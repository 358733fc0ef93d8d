#pragma once

#include <QtGlobal>

// The 55 built-in auxiliary parameter kinds in one table. Type numbers follow the
// alphabetical order of the journal keys, so the row index is the type number.

enum class AuxParFamily { Integer, LongLong, Mac, Signal, Source, String, Time, Bool };

enum class AuxParEditor {
    FamilyDefault,
    Spin,        // spin box 0..spinMax
    MacLabel,    // line edit with the label placeholder
    Categories,  // line edit for a category set
};

struct AuxParKindInfo {
    int type;
    const char *key;
    const char *label;     // translated in the QObject context
    AuxParFamily family;
    AuxParEditor editor;
    int spinMax;
    const char *trueWord;  // boolean kinds only, QObject context
    const char *falseWord;
};

#define NIMB_TR(text) QT_TRANSLATE_NOOP("QObject", text)
#define NIMB_STR(t, k, l) {t, k, NIMB_TR(l), AuxParFamily::String, AuxParEditor::FamilyDefault, 0, nullptr, nullptr}
#define NIMB_INT(t, k, l, max) {t, k, NIMB_TR(l), AuxParFamily::Integer, AuxParEditor::Spin, max, nullptr, nullptr}
#define NIMB_LONG(t, k, l) {t, k, NIMB_TR(l), AuxParFamily::LongLong, AuxParEditor::FamilyDefault, 0, nullptr, nullptr}
#define NIMB_MAC(t, k, l) {t, k, NIMB_TR(l), AuxParFamily::Mac, AuxParEditor::MacLabel, 0, nullptr, nullptr}
#define NIMB_BOOL(t, k, l, yes, no) {t, k, NIMB_TR(l), AuxParFamily::Bool, AuxParEditor::FamilyDefault, 0, NIMB_TR(yes), NIMB_TR(no)}

inline constexpr AuxParKindInfo kAuxParKinds[] = {
    NIMB_STR(0, "account_type", "Account type"),
    NIMB_STR(1, "action", "Action"),
    NIMB_STR(2, "args", "Arguments"),
    NIMB_INT(3, "auid", "Event initiator ID", 65535),
    {4, "categories", NIMB_TR("MAC categories"), AuxParFamily::String, AuxParEditor::Categories, 0, nullptr, nullptr},
    NIMB_STR(5, "cmdargs", "Command prompt arguments"),
    NIMB_STR(6, "command", "Command"),
    NIMB_STR(7, "connection", "Connection name"),
    NIMB_INT(8, "deny", "Authorization attempts maximum", 32767),
    NIMB_STR(9, "directory", "Directory"),
    NIMB_LONG(10, "end_time", "Event ending time"),
    NIMB_STR(11, "exe", "Event triggered program"),
    NIMB_STR(12, "file", "File"),
    NIMB_STR(13, "gateway", "Gateway"),
    NIMB_INT(14, "gid", "Group ID", 65536),
    NIMB_STR(15, "group", "Group"),
    NIMB_STR(16, "host", "Host"),
    NIMB_STR(17, "interface", "Interface"),
    NIMB_STR(18, "ipaddress", "IP-address"),
    NIMB_STR(19, "ipaddress_old", "Old IP-address"),
    NIMB_STR(20, "key", "Key"),
    NIMB_INT(21, "level", "MAC level", 3),
    NIMB_STR(22, "manufacturer", "Manufacturer"),
    NIMB_STR(23, "mode", "Access rights"),
    NIMB_STR(24, "module", "Module"),
    NIMB_STR(25, "nameserver", "DNS-server"),
    NIMB_STR(26, "netmask", "Subnet mask"),
    NIMB_MAC(27, "obj", "Object label"),
    NIMB_MAC(28, "obj_new", "New object label"),
    NIMB_BOOL(29, "onsudo", "Performed on behalf of a superuser", "yes", "no"),
    NIMB_STR(30, "package", "Package"),
    NIMB_STR(31, "path", "Object path"),
    NIMB_INT(32, "pid", "Process ID", 32768),
    NIMB_INT(33, "ppid", "Parent process ID", 32768),
    NIMB_STR(34, "product_id", "Product ID"),
    NIMB_STR(35, "product_name", "Product name"),
    NIMB_BOOL(36, "result", "Result", "success", "failed"),
    NIMB_STR(37, "serial_number", "Serial number"),
    {38, "signal", NIMB_TR("Signal"), AuxParFamily::Signal, AuxParEditor::FamilyDefault, 0, nullptr, nullptr},
    {39, "source", NIMB_TR("Source"), AuxParFamily::Source, AuxParEditor::FamilyDefault, 0, nullptr, nullptr},
    NIMB_LONG(40, "start_time", "Event starting time"),
    NIMB_BOOL(41, "state", "Current state", "enabled", "disabled"),
    NIMB_MAC(42, "subj", "Subject label"),
    NIMB_BOOL(43, "success", "Operation success status", "success", "failed"),
    NIMB_INT(44, "tally", "Failed authorization attempts", 32767),
    NIMB_STR(45, "terminal", "Terminal"),
    {46, "time", NIMB_TR("Time"), AuxParFamily::Time, AuxParEditor::FamilyDefault, 0, nullptr, nullptr},
    NIMB_STR(47, "type_en", "Event type"),
    NIMB_STR(48, "type_ru", "Event type"),
    NIMB_INT(49, "uid", "User ID", 65535),
    NIMB_STR(50, "undefined", "Undefined information"),
    NIMB_STR(51, "unique_id", "Record unique ID"),
    NIMB_LONG(52, "unixtime", "UNIX time label"),
    NIMB_STR(53, "user", "User"),
    NIMB_STR(54, "vendor_id", "Vendor ID"),
};

#undef NIMB_STR
#undef NIMB_INT
#undef NIMB_LONG
#undef NIMB_MAC
#undef NIMB_BOOL

inline constexpr int kAuxParKindCount = int(sizeof(kAuxParKinds) / sizeof(kAuxParKinds[0]));
static_assert(kAuxParKindCount == 55, "every built-in parameter kind has a row");

constexpr bool auxParRowsInOrder(int i = 0)
{
    return i == kAuxParKindCount || (kAuxParKinds[i].type == i && auxParRowsInOrder(i + 1));
}
static_assert(auxParRowsInOrder(), "a row's index is its type number");

// Type numbers that other code addresses directly.
namespace AuxParId
{
enum : int {
    OnSudo = 29,
    EndTime = 10,
    Host = 16,
    Result = 36,
    Signal = 38,
    Source = 39,
    StartTime = 40,
    State = 41,
    Success = 43,
    Time = 46,
    TypeEn = 47,
    TypeRu = 48,
    Undefined = 50,
    UnixTime = 52,
};
}
