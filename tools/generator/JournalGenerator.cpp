// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "JournalGenerator.h"

#include <QDateTime>
#include <QFile>
#include <QHash>
#include <QIODevice>
#include <QList>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstring>
#include <limits>
#include <string>

namespace nimbgen
{

namespace
{

// xoshiro256**: the same sequence on every platform and library, unlike <random>'s distributions.
class Rng
{
public:
    explicit Rng(quint64 seed)
    {
        quint64 x = seed;
        for (quint64 &s : m_s) {
            x += 0x9e3779b97f4a7c15ULL;
            quint64 z = x;
            z = (z ^ (z >> 30)) * 0xbf58476d1ce4e5b9ULL;
            z = (z ^ (z >> 27)) * 0x94d049bb133111ebULL;
            s = z ^ (z >> 31);
        }
    }

    quint64 next()
    {
        const quint64 result = rotl(m_s[1] * 5, 7) * 9;
        const quint64 t = m_s[1] << 17;
        m_s[2] ^= m_s[0];
        m_s[3] ^= m_s[1];
        m_s[1] ^= m_s[2];
        m_s[0] ^= m_s[3];
        m_s[2] ^= t;
        m_s[3] = rotl(m_s[3], 45);
        return result;
    }

    quint32 below(quint32 n) { return quint32(((next() >> 32) * n) >> 32); }
    bool permille(int p) { return below(1000) < quint32(p); }
    double unit() { return double(next() >> 11) * (1.0 / 9007199254740992.0); }

    template<typename T, size_t N>
    const T &pick(const T (&items)[N])
    {
        return items[below(N)];
    }

private:
    static quint64 rotl(quint64 x, int k) { return (x << k) | (x >> (64 - k)); }
    quint64 m_s[4];
};

// The built-in auxiliary parameters, by journal key, in the viewer's order.
enum Param {
    AccountType, Action, Args, Auid, Categories, CmdArgs, Command, Connection, Deny, Directory,
    EndTime, Exe, File, Gateway, Gid, Group, Host, Interface, IpAddress, IpAddressOld,
    Key, Level, Manufacturer, Mode, Module, NameServer, NetMask, Obj, ObjNew, OnSudo,
    Package, Path, Pid, Ppid, ProductId, ProductName, Result, SerialNumber, Signal, Source,
    StartTime, State, Subj, Success, Tally, Terminal, Time, TypeEn, TypeRu, Uid,
    Undefined, UniqueId, UnixTime, User, VendorId, ParamCount
};

const char *const kParamKeys[ParamCount] = {
    "account_type", "action", "args", "auid", "categories", "cmdargs", "command", "connection", "deny", "directory",
    "end_time", "exe", "file", "gateway", "gid", "group", "host", "interface", "ipaddress", "ipaddress_old",
    "key", "level", "manufacturer", "mode", "module", "nameserver", "netmask", "obj", "obj_new", "onsudo",
    "package", "path", "pid", "ppid", "product_id", "product_name", "result", "serial_number", "signal", "source",
    "start_time", "state", "subj", "success", "tally", "terminal", "time", "type_en", "type_ru", "uid",
    "undefined", "unique_id", "unixtime", "user", "vendor_id"};

// Value pools differ by the part of the system an event comes from.
enum class Area { Auth, Audit, Usb, Net, Pkg, Svc, Mac, Custom, Other };

Area areaOf(const QString &directory)
{
    static const QHash<QString, Area> areas = {
        {QStringLiteral("auth"), Area::Auth}, {QStringLiteral("audit"), Area::Audit},
        {QStringLiteral("usb"), Area::Usb}, {QStringLiteral("network"), Area::Net},
        {QStringLiteral("packages"), Area::Pkg}, {QStringLiteral("services"), Area::Svc},
        {QStringLiteral("mac"), Area::Mac}, {QStringLiteral("custom-events"), Area::Custom}};
    return areas.value(directory, Area::Other);
}

struct Persona {
    const char *name;
    int uid;
};
const Persona kPersonas[] = {
    {"ivanov", 1000}, {"ivanov", 1000}, {"petrova", 1001}, {"petrova", 1001}, {"sidorov", 1002},
    {"kuznetsova", 1003}, {"admin", 1004}, {"root", 0}, {"backup", 34}, {"operator", 1005}};

struct Device {
    const char *vendorId;
    const char *productId;
    const char *manufacturer;
    const char *productName;
};
const Device kDevices[] = {
    {"0951", "1666", "Kingston", "DataTraveler 3.0"}, {"0781", "5567", "SanDisk", "Cruzer Blade"},
    {"046d", "c52b", "Logitech", "USB Receiver"}, {"8564", "1000", "Transcend", "JetFlash"},
    {"058f", "6387", "Generic", "Flash Disk"}, {"1f75", "0917", "Innostor", "Флеш-накопитель"}};

struct CommandLine {
    const char *command;
    const char *args;
};
// Some arguments carry quotes, backslashes or a tab, which the logger has to escape.
const CommandLine kSudoCommands[] = {
    {"/usr/bin/systemctl", "restart syslog-ng"},
    {"/usr/bin/systemctl", "status sshd"},
    {"/usr/bin/journalctl", "-u sshd --since today"},
    {"/usr/bin/less", "/var/log/syslog"},
    {"/usr/bin/apt-get", "update"},
    {"/usr/sbin/usermod", "-aG plugdev petrova"},
    {"/usr/bin/mount", "/dev/sdb1 /mnt"},
    {"/usr/bin/cp", "/home/ivanov/Документы/приказ №12.pdf /srv/share/"},
    {"/usr/bin/grep", R"(-r "PermitRootLogin" /etc/ssh)"},
    {"/usr/bin/smbclient", R"(\\fs01\docs -U OFFICE\ivanov)"},
    {"/usr/bin/sed", "-i 's/\t/    /g' /etc/fstab"}};
const CommandLine kServiceCommands[] = {
    {"/usr/sbin/logrotate", "/etc/logrotate.conf"}, {"/usr/sbin/anacron", "-s"},
    {"/usr/lib/velmo/integrity-check", "--quick"}, {"/usr/bin/updatedb", ""}};
const CommandLine kSiteCommands[] = {
    {"/usr/local/sbin/backup.sh", "--full /srv/share"}, {"/usr/local/sbin/backup.sh", "--incremental /home"},
    {"/usr/local/bin/inventory", R"(--report "/srv/share/Инвентаризация/отчёт.csv")"}};

const char *const kPackages[] = {
    "firefox-esr", "openssh-server", "libreoffice-writer", "postgresql-15", "cups", "thunderbird",
    "velmo-agent", "vim", "htop", "linux-image-6.1.0-13-amd64", "telnet"};

const char *const kHosts[] = {"srv-sec-01", "srv-sec-01", "srv-sec-01", "ws-0412", "ws-0415", "ws-0533", "srv-files-02"};

const char *const kLabels[] = {"0:0:0:0:0", "0:0:0:0:0", "1:0:0:0:0", "2:0:3:0:0", "3:63:0:0:0", "0:63:0:0:0", "1:0:1:0:0"};
const char *const kBrokenLabels[] = {"1:0:0:0", "high:0:0:0:0", ""};

struct UnknownMember {
    const char *key;
    const char *text;   // null: a number
};
const UnknownMember kUnknownMembers[] = {
    {"foo", "bar"}, {"session", "c12"}, {"comm", "bash"}, {"audit_seq", nullptr},
    {"note", "Повторная попытка"}, {"retries", nullptr}};

const char *const kMonths[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};

void appendEscaped(std::string &out, const char *text, size_t size)
{
    static const char hex[] = "0123456789abcdef";
    size_t plain = 0;
    for (size_t i = 0; i < size; ++i) {
        const unsigned char c = static_cast<unsigned char>(text[i]);
        if (c >= 0x20 && c != '"' && c != '\\')
            continue;
        out.append(text + plain, i - plain);
        plain = i + 1;
        switch (c) {
        case '"': out += "\\\""; break;
        case '\\': out += "\\\\"; break;
        case '\n': out += "\\n"; break;
        case '\t': out += "\\t"; break;
        case '\r': out += "\\r"; break;
        default:
            out += "\\u00";
            out += hex[c >> 4];
            out += hex[c & 15];
        }
    }
    out.append(text + plain, size - plain);
}

void appendQuoted(std::string &out, const char *text)
{
    out += '"';
    appendEscaped(out, text, strlen(text));
    out += '"';
}

void appendQuoted(std::string &out, const std::string &text)
{
    out += '"';
    appendEscaped(out, text.data(), text.size());
    out += '"';
}

void appendNumber(std::string &out, qint64 value)
{
    char digits[24];
    const auto result = std::to_chars(digits, digits + sizeof digits, value);
    out.append(digits, result.ptr);
}

void appendPadded(std::string &out, unsigned value, int width, char pad = '0')
{
    char digits[8];
    int n = 0;
    do {
        digits[n++] = char('0' + value % 10);
        value /= 10;
    } while (value && n < 8);
    while (n < width--)
        out += pad;
    while (n)
        out += digits[--n];
}

// Writes the members of one JSON object, putting the commas between them.
class Members
{
public:
    explicit Members(std::string &out) : m_out(out) { }
    std::string &key(const char *name)
    {
        if (!m_first)
            m_out += ',';
        m_first = false;
        appendQuoted(m_out, name);
        m_out += ':';
        return m_out;
    }
    void text(const char *name, const char *value) { appendQuoted(key(name), value); }
    void text(const char *name, const std::string &value) { appendQuoted(key(name), value); }
    void number(const char *name, qint64 value) { appendNumber(key(name), value); }

private:
    std::string &m_out;
    bool m_first = true;
};

// A line's time in the two forms the logger writes.
struct Stamp {
    qint64 time = -1;
    std::string iso;
    std::string legacy;
};

struct Event {
    std::string messageId;
    std::string nameEn;
    std::string nameRu;
    std::vector<int> params;            // Param values, or -1 for a key only known by name
    std::vector<std::string> keys;
    bool failure = false;               // an event about something that did not work
    bool hasTime = false;
    size_t group = 0;
};

struct EventGroup {
    std::string typeEn;
    std::string typeRu;
    std::string source;
    std::string facility;
    bool typed = true;
    Area area = Area::Other;
};

struct Line {
    const Event *event = nullptr;
    const EventGroup *group = nullptr;
    const Persona *persona = nullptr;
    const Device *device = nullptr;
    const CommandLine *commandLine = nullptr;
    const char *package = nullptr;
    bool ok = true;
    int level = 0;              // 0: a word the viewer does not know, or none
    qint64 time = 0;
};

}

struct JournalGenerator::Private {
    Private(const Catalogue &catalogue, const GeneratorOptions &options);

    qint64 nextTime(qint64 index);
    const Stamp &stamp(qint64 time);
    int utcOffset(qint64 time);

    void writeEventLine(std::string &out, qint64 time);
    void writeMalformedLine(std::string &out, qint64 time);
    void chooseLine(Line &line, qint64 time);
    void writeHeader(Members &members, const Line &line, bool withPriority);
    void writeBody(std::string &out, const Line &line);
    void writeParam(Members &members, int param, const std::string &key, const Line &line);
    void writeBool(std::string &out, bool value, bool plainForms);
    void writeCustom(Members &members, const std::string &name);

    GeneratorOptions options;
    Rng rng;
    std::vector<EventGroup> groups;
    std::vector<Event> events;
    std::vector<size_t> eventsByLevel[9];
    std::vector<std::string> customParameters;

    qint64 start = 0;
    qint64 previous = 0;
    qint64 lines = 0;
    qint64 bytes = 0;
    Stamp cachedStamp;
    qint64 offsetHour = std::numeric_limits<qint64>::min();
    int offset = 0;
};

JournalGenerator::Private::Private(const Catalogue &catalogue, const GeneratorOptions &opts)
    : options(opts)
    , rng(opts.seed)
{
    QHash<QString, int> paramIds;
    for (int i = 0; i < ParamCount; ++i)
        paramIds.insert(QLatin1String(kParamKeys[i]), i);

    for (const CatalogueGroup &g : catalogue.groups) {
        EventGroup group;
        group.typeEn = g.typeEn.toStdString();
        group.typeRu = g.typeRu.toStdString();
        group.source = g.source.toStdString();
        group.facility = g.facility.toStdString();
        group.typed = g.typed;
        group.area = areaOf(g.directory);
        groups.push_back(group);
        for (const CatalogueEvent &e : g.events) {
            Event event;
            event.messageId = e.messageId.toStdString();
            event.nameEn = e.nameEn.toStdString();
            event.nameRu = e.nameRu.toStdString();
            event.group = groups.size() - 1;
            for (const char *word : {"failure", "failed", "denied", "blocked", "invalid", "unreachable", "violation"})
                event.failure = event.failure || event.messageId.find(word) != std::string::npos;
            for (const QString &key : e.parameters) {
                const int id = paramIds.value(key, -1);
                // The logger fills these itself, from the line's header and the group.
                if (id == Host || id == Source || id == Undefined || id == TypeEn || id == TypeRu)
                    continue;
                event.params.push_back(id);
                event.keys.push_back(key.toStdString());
                event.hasTime = event.hasTime || id == Time;
            }
            eventsByLevel[qBound(1, e.level, 8)].push_back(events.size());
            events.push_back(event);
        }
    }
    for (const QString &name : catalogue.customParameters)
        customParameters.push_back(name.toStdString());

    const qint64 span = qint64(std::max(0, options.days)) * 86400;
    start = options.live ? options.end : options.end - span;
    previous = start;
    if (options.lines < 0 && options.bytes < 0)
        options.lines = 0;
}

// Times climb steadily through the window in proportion to the work done, with jitter
// inside each step; a clamp keeps them ascending like a real journal's.
qint64 JournalGenerator::Private::nextTime(qint64 index)
{
    qint64 time;
    if (options.live) {
        time = previous + rng.below(3);
    } else {
        const double span = double(options.end - start);
        double done;
        if (options.lines >= 0)
            done = (double(index) + rng.unit()) / double(std::max<qint64>(1, options.lines));
        else
            done = (double(bytes) + 480.0 * rng.unit()) / double(std::max<qint64>(1, options.bytes));
        time = start + qint64(std::floor(span * std::min(1.0, done)));
        time = qBound(previous, time, options.end);
    }
    previous = time;
    return time;
}

int JournalGenerator::Private::utcOffset(qint64 time)
{
    // Offsets change on the hour, so one conversion per hour keeps the clock work cheap.
    const qint64 hour = time >= 0 ? time / 3600 : (time - 3599) / 3600;
    if (hour != offsetHour) {
        offsetHour = hour;
        offset = QDateTime::fromSecsSinceEpoch(time).offsetFromUtc();
    }
    return offset;
}

const Stamp &JournalGenerator::Private::stamp(qint64 time)
{
    if (cachedStamp.time == time)
        return cachedStamp;
    cachedStamp.time = time;
    const int utc = utcOffset(time);
    const qint64 local = time + utc;
    qint64 days = local >= 0 ? local / 86400 : (local - 86399) / 86400;
    const qint64 secondOfDay = local - days * 86400;

    // Civil date from a day count (proleptic Gregorian calendar).
    days += 719468;
    const qint64 era = (days >= 0 ? days : days - 146096) / 146097;
    const unsigned dayOfEra = unsigned(days - era * 146097);
    const unsigned yearOfEra = (dayOfEra - dayOfEra / 1460 + dayOfEra / 36524 - dayOfEra / 146096) / 365;
    const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
    const unsigned mp = (5 * dayOfYear + 2) / 153;
    const unsigned day = dayOfYear - (153 * mp + 2) / 5 + 1;
    const unsigned month = mp < 10 ? mp + 3 : mp - 9;
    const unsigned year = unsigned(qint64(yearOfEra) + era * 400 + (month <= 2));
    const unsigned hour = unsigned(secondOfDay / 3600);
    const unsigned minute = unsigned(secondOfDay / 60 % 60);
    const unsigned second = unsigned(secondOfDay % 60);

    std::string &iso = cachedStamp.iso;
    iso.clear();
    appendPadded(iso, year, 4);
    iso += '-';
    appendPadded(iso, month, 2);
    iso += '-';
    appendPadded(iso, day, 2);
    iso += 'T';
    appendPadded(iso, hour, 2);
    iso += ':';
    appendPadded(iso, minute, 2);
    iso += ':';
    appendPadded(iso, second, 2);
    iso += utc < 0 ? '-' : '+';
    appendPadded(iso, unsigned(std::abs(utc) / 3600), 2);
    iso += ':';
    appendPadded(iso, unsigned(std::abs(utc) / 60 % 60), 2);

    // The traditional syslog form pads the day with a blank.
    std::string &legacy = cachedStamp.legacy;
    legacy.assign(kMonths[month - 1]);
    legacy += ' ';
    appendPadded(legacy, day, 2, ' ');
    legacy += ' ';
    legacy.append(iso, 11, 8);
    return cachedStamp;
}

void JournalGenerator::Private::chooseLine(Line &line, qint64 time)
{
    // Severity first, then an event that usually has it, so the mix stays mostly routine.
    static const int levelWeights[9] = {150, 30, 40, 80, 400, 900, 2000, 5600, 800};
    int roll = int(rng.below(10000));
    int level = 0;
    while (roll >= levelWeights[level]) {
        roll -= levelWeights[level];
        ++level;
    }
    const std::vector<size_t> &candidates = eventsByLevel[level];
    const size_t index = candidates.empty() ? rng.below(quint32(events.size())) : candidates[rng.below(quint32(candidates.size()))];
    line.event = &events[index];
    line.group = &groups[line.event->group];
    line.persona = &rng.pick(kPersonas);
    line.device = &rng.pick(kDevices);
    line.package = rng.pick(kPackages);
    switch (line.group->area) {
    case Area::Svc: line.commandLine = &rng.pick(kServiceCommands); break;
    case Area::Custom: line.commandLine = &rng.pick(kSiteCommands); break;
    default: line.commandLine = &rng.pick(kSudoCommands); break;
    }
    line.ok = !line.event->failure && rng.below(100) < 93;
    line.time = time;
    line.level = level;
}

namespace
{
const char *priorityWord(Rng &rng, int level)
{
    switch (level) {
    case 1: return rng.below(2) ? "emergency" : "emerg";
    case 2: return "alert";
    case 3: return rng.below(2) ? "critical" : "crit";
    case 4: return rng.below(5) < 3 ? "error" : "err";
    case 5: return "warning";
    case 6: return "notice";
    case 7: return rng.below(100) < 85 ? "info" : "informational";
    case 8: return "debug";
    default: {
        // Hand-written configurations leave the word out or spell it their own way.
        static const char *const unknown[] = {nullptr, nullptr, "Warning", "Warning", "warn", "Info"};
        return rng.pick(unknown);
    }
    }
}

bool contains(const std::string &text, const char *word)
{
    return text.find(word) != std::string::npos;
}
}

void JournalGenerator::Private::writeHeader(Members &members, const Line &line, bool withPriority)
{
    const Stamp &s = stamp(line.time);
    const quint32 form = rng.below(100);
    if (form >= 3)
        members.text("ISODATE", s.iso);
    // Most lines carry both forms; a few carry only one of them.
    if (form < 3 || form >= 5)
        members.text("DATE", s.legacy);
    members.text("HOST", rng.pick(kHosts));
    members.text("FACILITY", line.group->facility);
    if (withPriority) {
        if (const char *word = priorityWord(rng, line.level))
            members.text("PRIORITY", word);
    }
}

void JournalGenerator::Private::writeBool(std::string &out, bool value, bool plainForms)
{
    static const char *const yes[] = {"\"success\"", "\"success\"", "\"success\"", "\"success\"", "true", "1", "\"yes\"", "\"true\""};
    static const char *const no[] = {"\"failed\"", "\"failed\"", "\"failed\"", "\"failed\"", "false", "0", "\"no\"", "\"false\""};
    static const char *const on[] = {"true", "true", "1", "\"yes\""};
    static const char *const off[] = {"false", "false", "0", "\"no\""};
    if (plainForms)
        out += value ? rng.pick(on) : rng.pick(off);
    else
        out += value ? rng.pick(yes) : rng.pick(no);
}

void JournalGenerator::Private::writeCustom(Members &members, const std::string &name)
{
    static const char *const workplaces[] = {"ARM-0412", "ARM-0415", "Кабинет 214", "Приёмная"};
    static const char *const notes[] = {
        "Проверено, ложное срабатывание", "Escalated to the security officer",
        R"(Пользователь сообщил: "не открывается почта")", "Planned maintenance"};
    if (name == "ticket_id") {
        std::string ticket = "INC-";
        appendPadded(ticket, 10000 + rng.below(90000), 5);
        members.text(name.c_str(), ticket);
    } else if (name == "workplace") {
        members.text(name.c_str(), rng.pick(workplaces));
    } else if (name == "operator_note") {
        members.text(name.c_str(), rng.pick(notes));
    } else {
        members.text(name.c_str(), "value");
    }
}

void JournalGenerator::Private::writeParam(Members &m, int param, const std::string &keyText, const Line &line)
{
    const char *key = keyText.c_str();
    const Event &event = *line.event;
    const Area area = line.group->area;
    switch (param) {
    case AccountType: {
        static const char *const types[] = {"local", "local", "domain", "service"};
        m.text(key, rng.pick(types));
        break;
    }
    case Action: {
        static const char *const net[] = {"drop", "drop", "reject"};
        static const char *const audit[] = {"add", "remove", "rotate", "suspend"};
        static const char *const site[] = {"check", "report"};
        m.text(key, area == Area::Net ? rng.pick(net) : area == Area::Custom ? rng.pick(site) : rng.pick(audit));
        break;
    }
    case Args: {
        static const char *const args[] = {
            "--no-daemon", "--config=/etc/velmo/agent.conf", "-f /var/log/syslog", "--type=renderer --lang=ru",
            R"(-c "/usr/local/sbin/backup.sh --full")", R"(C:\Program Files\1cv8\bin\1cv8.exe)", "", "-u"};
        m.text(key, rng.pick(args));
        break;
    }
    case Auid:
        m.number(key, line.persona->uid);
        break;
    case Categories: {
        static const char *const categories[] = {"0x0", "0x0", "0x1", "0x3", "0x7", "0xff"};
        m.text(key, rng.pick(categories));
        break;
    }
    case CmdArgs:
        if (area == Area::Pkg) {
            std::string args = contains(event.messageId, "removed") ? "remove --purge "
                             : contains(event.messageId, "upgraded") ? "install --only-upgrade -y "
                                                                     : "install -y ";
            args += line.package;
            m.text(key, args);
        } else {
            m.text(key, line.commandLine->args);
        }
        break;
    case Command:
        if (area == Area::Pkg) {
            static const char *const managers[] = {"/usr/bin/apt-get", "/usr/bin/apt-get", "/usr/bin/dpkg"};
            m.text(key, rng.pick(managers));
        } else {
            m.text(key, line.commandLine->command);
        }
        break;
    case Connection: {
        static const char *const connections[] = {"Wired connection 1", "Проводное подключение 1", "office-wifi", "VPN головной офис"};
        m.text(key, rng.pick(connections));
        break;
    }
    case Deny: {
        static const int limits[] = {3, 5, 5, 10};
        m.number(key, rng.pick(limits));
        break;
    }
    case Directory: {
        static const char *const media[] = {"/media/ivanov/KINGSTON", "/media/petrova/Флешка", "/mnt"};
        static const char *const backup[] = {"/srv/backup/daily", "/srv/backup/Бухгалтерия"};
        static const char *const common[] = {"/etc", "/var/log", "/tmp", "/srv/share"};
        if (area == Area::Usb)
            m.text(key, rng.pick(media));
        else if (area == Area::Custom)
            m.text(key, rng.pick(backup));
        else if (rng.below(2))
            m.text(key, std::string("/home/") + line.persona->name);
        else
            m.text(key, rng.pick(common));
        break;
    }
    case EndTime:
    case UnixTime:
        m.number(key, line.time);
        break;
    case StartTime:
        m.number(key, line.time - 1 - rng.below(7200));
        break;
    case Time:
        m.text(key, stamp(line.time).iso);
        break;
    case Exe: {
        static const char *const auth[] = {"/usr/bin/login", "/usr/sbin/sshd", "/usr/sbin/sshd", "/usr/bin/sudo", "/usr/sbin/lightdm", "/usr/bin/passwd", "/usr/bin/su"};
        static const char *const services[] = {"/usr/sbin/sshd", "/usr/sbin/cupsd", "/usr/sbin/NetworkManager", "/usr/sbin/cron", "/usr/lib/postgresql/15/bin/postgres", "/usr/sbin/velmo-agent"};
        static const char *const packages[] = {"/usr/bin/apt-get", "/usr/bin/dpkg"};
        static const char *const mac[] = {"/usr/sbin/velmo-macctl", "/usr/bin/chmod", "/usr/bin/bash"};
        static const char *const programs[] = {"/usr/bin/bash", "/usr/bin/rm", "/usr/sbin/useradd", "/usr/sbin/auditctl", "/usr/bin/python3.11", "/usr/lib/firefox-esr/firefox-esr", "/opt/1cv8/x86_64/8.3.23/1cv8"};
        if (contains(event.messageId, "sudo"))
            m.text(key, "/usr/bin/sudo");
        else
            m.text(key, area == Area::Auth ? rng.pick(auth) : area == Area::Svc ? rng.pick(services) : area == Area::Pkg ? rng.pick(packages) : area == Area::Mac ? rng.pick(mac) : rng.pick(programs));
        break;
    }
    case File: {
        static const char *const files[] = {
            "/etc/shadow", "/etc/sudoers", "/var/lib/dpkg/status", "/var/log/velmo/audit.log",
            "/home/ivanov/Документы/отчёт за квартал.odt", "/srv/share/Бухгалтерия/баланс_2026.xlsx",
            R"(/home/petrova/Загрузки/setup "new".sh)", "/var/cache/apt/archives/firefox-esr_115.5.0esr-1_amd64.deb"};
        m.text(key, rng.pick(files));
        break;
    }
    case Gateway: {
        static const char *const gateways[] = {"192.168.10.1", "10.20.0.1", "172.16.0.1"};
        m.text(key, rng.pick(gateways));
        break;
    }
    case Gid: {
        static const int gids[] = {0, 4, 27, 100, 1000, 1001, 1002, 65534};
        m.number(key, rng.pick(gids));
        break;
    }
    case Group: {
        static const char *const names[] = {"sudo", "users", "adm", "plugdev", "netdev", "audio", "backup"};
        m.text(key, rng.pick(names));
        break;
    }
    case Interface: {
        static const char *const interfaces[] = {"eth0", "enp3s0", "enp3s0", "wlp2s0", "tun0"};
        m.text(key, rng.pick(interfaces));
        break;
    }
    case IpAddress:
    case IpAddressOld: {
        std::string address;
        if (rng.below(3)) {
            address = "192.168.10.";
        } else {
            address = "10.20.";
            appendNumber(address, rng.below(16));
            address += '.';
        }
        appendNumber(address, 2 + rng.below(250));
        m.text(key, address);
        break;
    }
    case Key: {
        static const char *const signingKeys[] = {"7638D0442B90D010", "DCC9EFBF77E11517", "0E98404D386FA1D9"};
        static const char *const auditKeys[] = {"access-shadow", "exec-priv", "usb-storage", "time-change"};
        m.text(key, area == Area::Pkg ? rng.pick(signingKeys) : rng.pick(auditKeys));
        break;
    }
    case Level:
        m.number(key, rng.below(4));
        break;
    case Manufacturer:
        m.text(key, line.device->manufacturer);
        break;
    case ProductId:
        m.text(key, line.device->productId);
        break;
    case ProductName:
        m.text(key, line.device->productName);
        break;
    case VendorId:
        m.text(key, line.device->vendorId);
        break;
    case Mode: {
        static const char *const modes[] = {"0640", "0600", "0755", "0644", "rw-r-----", "rwxr-x---"};
        m.text(key, rng.pick(modes));
        break;
    }
    case Module: {
        static const char *const drivers[] = {"nf_tables", "e1000e", "iwlwifi", "r8169"};
        static const char *const units[] = {"sshd.service", "cups.service", "NetworkManager.service", "cron.service", "postgresql@15-main.service", "velmo-agent.service"};
        m.text(key, area == Area::Net ? rng.pick(drivers) : rng.pick(units));
        break;
    }
    case NameServer: {
        static const char *const servers[] = {"192.168.10.2", "10.20.0.53", "77.88.8.8"};
        m.text(key, rng.pick(servers));
        break;
    }
    case NetMask: {
        static const char *const masks[] = {"255.255.255.0", "255.255.255.0", "255.255.0.0", "255.255.255.128"};
        m.text(key, rng.pick(masks));
        break;
    }
    case Obj:
    case ObjNew:
    case Subj:
        m.text(key, rng.permille(5) ? rng.pick(kBrokenLabels) : rng.pick(kLabels));
        break;
    case OnSudo:
        writeBool(m.key(key), contains(event.messageId, "sudo") || rng.below(4) == 0, true);
        break;
    case State:
        writeBool(m.key(key), line.ok && !contains(event.messageId, "down") && !contains(event.messageId, "stopped")
                      && !contains(event.messageId, "disabled"), true);
        break;
    case Result:
    case Success:
        writeBool(m.key(key), line.ok, false);
        break;
    case Package:
        m.text(key, line.package);
        break;
    case Path: {
        static const char *const devices[] = {"/dev/sdb1", "/dev/sdc", "/sys/bus/usb/devices/1-1.2", "/sys/bus/usb/devices/3-2"};
        static const char *const labelled[] = {"/home/ivanov/Документы/секретно.odt", "/srv/share/otdel", "/etc/shadow", "/home/petrova/Рабочий стол"};
        static const char *const common[] = {"/etc/ssh/sshd_config", "/var/log/syslog", "/home/ivanov/.bashrc", "/tmp/x.sh"};
        m.text(key, area == Area::Usb ? rng.pick(devices) : area == Area::Mac ? rng.pick(labelled) : rng.pick(common));
        break;
    }
    case Pid:
        m.number(key, 300 + rng.below(32468));
        break;
    case Ppid:
        m.number(key, rng.below(3) ? 1 : 300 + rng.below(32468));
        break;
    case SerialNumber: {
        static const char hex[] = "0123456789ABCDEF";
        std::string serial;
        for (int i = rng.below(2) ? 16 : 24; i > 0; --i)
            serial += hex[rng.below(16)];
        m.text(key, serial);
        break;
    }
    case Signal: {
        // Mostly the usual termination signals; now and then a real-time one or a number with no name.
        static const int numbers[] = {15, 15, 15, 9, 9, 11, 6, 1, 2, 13, 34, 40, 64, 32};
        m.number(key, contains(event.messageId, "oom") ? 9 : rng.pick(numbers));
        break;
    }
    case Tally:
        m.number(key, 1 + rng.below(10));
        break;
    case Terminal: {
        static const char *const terminals[] = {"tty1", "tty2", "pts/0", "pts/1", "pts/3", ":0", "ssh"};
        m.text(key, rng.pick(terminals));
        break;
    }
    case Uid:
        m.number(key, contains(event.messageId, "sudo") ? 0 : line.persona->uid);
        break;
    case UniqueId: {
        static const char hex[] = "0123456789abcdef";
        std::string id;
        for (int i = 0; i < 32; ++i) {
            if (i == 8 || i == 12 || i == 16 || i == 20)
                id += '-';
            id += hex[rng.below(16)];
        }
        m.text(key, id);
        break;
    }
    case User:
        if (rng.below(25) == 0)
            m.text(key, std::string("OFFICE\\") + line.persona->name);
        else
            m.text(key, line.persona->name);
        break;
    default:
        // A key the catalogue names but this generator has no values for.
        m.text(key, "-");
        break;
    }
}

void JournalGenerator::Private::writeBody(std::string &out, const Line &line)
{
    static const std::string timeKey = kParamKeys[Time];
    const Event &event = *line.event;
    out += '{';
    Members m(out);
    m.text("message_id", event.messageId);
    m.text("name_en", event.nameEn);
    if (!rng.permille(5))
        m.text("name_ru", event.nameRu);
    if (line.group->typed) {
        m.text("type_en", line.group->typeEn);
        if (!rng.permille(5))
            m.text("type_ru", line.group->typeRu);
    }
    for (size_t i = 0; i < event.params.size(); ++i)
        writeParam(m, event.params[i], event.keys[i], line);
    if (!event.hasTime && rng.permille(20))
        writeParam(m, Time, timeKey, line);
    if (rng.permille(20)) {
        const UnknownMember &member = rng.pick(kUnknownMembers);
        if (member.text)
            m.text(member.key, member.text);
        else
            m.number(member.key, rng.below(100000));
    }
    if (!customParameters.empty() && (line.group->area == Area::Custom ? rng.below(2) == 0 : rng.permille(30))) {
        const size_t first = rng.below(quint32(customParameters.size()));
        writeCustom(m, customParameters[first]);
        const size_t second = rng.below(quint32(customParameters.size()));
        if (second != first && rng.below(3) == 0)
            writeCustom(m, customParameters[second]);
    }
    out += '}';
}

void JournalGenerator::Private::writeEventLine(std::string &out, qint64 time)
{
    Line line;
    chooseLine(line, time);
    out += '{';
    Members m(out);
    writeHeader(m, line, true);
    std::string &msg = m.key("MSG");
    msg += '{';
    // A few events come from a source that no definition file describes.
    appendQuoted(msg, rng.permille(3) ? std::string("velmo-legacy") : line.group->source);
    msg += ':';
    writeBody(msg, line);
    msg += "}}\n";
}

void JournalGenerator::Private::writeMalformedLine(std::string &out, qint64 time)
{
    switch (rng.below(8)) {
    case 0:
    case 1: {
        // Cut short, as by a crash or a full disk in the middle of a write.
        std::string whole;
        writeEventLine(whole, time);
        whole.pop_back();
        out.append(whole, 0, 1 + rng.below(quint32(whole.size() - 2)));
        out += '\n';
        break;
    }
    case 2:
        out += rng.below(4) ? "\n" : "   \n";
        break;
    case 3: {
        static const char *const values[] = {R"(["velmo-auth","auth-login-success"])", R"("-- MARK --")", "42", "null", "[]"};
        out += rng.pick(values);
        out += '\n';
        break;
    }
    case 4: {
        Line first, second;
        chooseLine(first, time);
        chooseLine(second, time);
        out += '{';
        Members m(out);
        writeHeader(m, first, true);
        std::string &msg = m.key("MSG");
        msg += '{';
        appendQuoted(msg, first.group->source);
        msg += ':';
        writeBody(msg, first);
        msg += ',';
        // A repeated name would collapse into one member and make the line valid again.
        appendQuoted(msg, second.group->source == first.group->source ? std::string("velmo-legacy") : second.group->source);
        msg += ':';
        writeBody(msg, second);
        msg += "}}\n";
        break;
    }
    case 5:
    case 6: {
        Line line;
        chooseLine(line, time);
        out += '{';
        Members m(out);
        writeHeader(m, line, true);
        switch (rng.below(3)) {
        case 0: m.key("MSG") += "{}"; break;
        case 1: break;
        default: m.text("MSG", "Accepted password for ivanov from 192.168.10.23 port 51234 ssh2"); break;
        }
        out += "}\n";
        break;
    }
    default: {
        // A message that reached the file through a plain-text template.
        static const char *const texts[] = {
            " kernel: [ 8123.456789] usb 1-1.2: new high-speed USB device number 7 using xhci_hcd",
            " sshd[2113]: Accepted publickey for ivanov from 192.168.10.23 port 51234 ssh2",
            " syslog-ng[812]: Syslog connection broken; fd='14', server='AF_INET(10.20.0.5:514)'"};
        out += stamp(time).legacy;
        out += ' ';
        out += rng.pick(kHosts);
        out += rng.pick(texts);
        out += '\n';
        break;
    }
    }
}

JournalGenerator::JournalGenerator(Catalogue catalogue, const GeneratorOptions &options)
    : d(new Private(catalogue, options))
{
}

JournalGenerator::~JournalGenerator() = default;

bool JournalGenerator::write(QIODevice *device)
{
    constexpr size_t chunk = 4 << 20;
    std::string buffer;
    buffer.reserve(chunk + (64 << 10));
    auto flush = [&]() {
        const char *data = buffer.data();
        qint64 left = qint64(buffer.size());
        while (left > 0) {
            const qint64 written = device->write(data, left);
            if (written <= 0)
                return false;
            data += written;
            left -= written;
        }
        buffer.clear();
        return true;
    };

    if (d->events.empty())
        return d->options.lines == 0 && d->options.bytes <= 0;
    const GeneratorOptions &o = d->options;
    for (qint64 index = 0; o.lines >= 0 ? index < o.lines : d->bytes < o.bytes; ++index) {
        const size_t before = buffer.size();
        const qint64 time = d->nextTime(index);
        if (d->rng.permille(o.malformedPermille))
            d->writeMalformedLine(buffer, time);
        else
            d->writeEventLine(buffer, time);
        d->bytes += qint64(buffer.size() - before);
        ++d->lines;
        if (buffer.size() >= chunk && !flush())
            return false;
    }
    return flush();
}

qint64 JournalGenerator::linesWritten() const
{
    return d->lines;
}

qint64 JournalGenerator::bytesWritten() const
{
    return d->bytes;
}

qint64 parseByteSize(const QString &text)
{
    QString digits = text.trimmed();
    qint64 unit = 1;
    if (!digits.isEmpty()) {
        switch (digits.back().toUpper().toLatin1()) {
        case 'K': unit = qint64(1) << 10; break;
        case 'M': unit = qint64(1) << 20; break;
        case 'G': unit = qint64(1) << 30; break;
        default: break;
        }
        if (unit > 1)
            digits.chop(1);
    }
    bool ok = false;
    const qint64 value = digits.toLongLong(&ok);
    if (!ok || value < 0 || value > std::numeric_limits<qint64>::max() / unit)
        return -1;
    return value * unit;
}

qint64 lastJournalTime(const QString &path)
{
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return 0;
    const qint64 tail = 64 << 10;
    if (file.size() > tail)
        file.seek(file.size() - tail);
    const QList<QByteArray> lines = file.readAll().split('\n');
    static const QByteArray marker = "\"ISODATE\":\"";
    for (auto line = lines.crbegin(); line != lines.crend(); ++line) {
        const int at = line->indexOf(marker);
        if (at < 0)
            continue;
        const int from = at + marker.size();
        const int to = line->indexOf('"', from);
        const QDateTime time = QDateTime::fromString(QString::fromLatin1(line->mid(from, to - from)), Qt::ISODate);
        if (to > from && time.isValid())
            return time.toSecsSinceEpoch();
    }
    return 0;
}

}
