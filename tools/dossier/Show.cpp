// dossier show and diff: a record as a tree of properties, and the
// differences between two records property by property.

#include "Tool.h"

#include <cmath>

namespace DossierTool {

using namespace EMITTERDOSSIERDOC;
using Frame::ClassInfo;
using Frame::FieldInfo;
using Frame::Kind;

namespace {

const FieldInfo* unitField(const ClassInfo& info)
{
    for (int i = 0; i < Frame::FieldCount(info); ++i) {
        const FieldInfo& f = Frame::FieldAt(info, i);
        if (Frame::FieldName(f) == QLatin1String("unit") && Frame::FieldKind(f) == Kind::Enum)
            return &f;
    }
    return nullptr;
}

// A plain field's value for people: texts as they are, an invalid
// enumeration marked, a double with its record's unit.
QString valueText(const Record& record, const FieldInfo& f, const FieldInfo* unit)
{
    QString text = Frame::FieldText(record, f);
    if (Frame::FieldKind(f) == Kind::Enum && text.isEmpty())
        return QStringLiteral("(invalid)");
    if (Frame::FieldKind(f) == Kind::Text && text.isEmpty())
        return QStringLiteral("\"\"");
    if (Frame::FieldKind(f) == Kind::Double && unit && Frame::IsFieldSet(record, *unit))
        text += QLatin1Char(' ') + Frame::FieldText(record, *unit);
    return text;
}

// A record whose one value is its text content and a unit, such as a
// measured value, fits on one line: "12.50 dBm".
bool isOneLiner(const ClassInfo& info)
{
    if (!Frame::IsLeafClass(info))
        return false;
    for (int i = 0; i < Frame::FieldCount(info); ++i)
        if (Frame::FieldXmlForm(Frame::FieldAt(info, i)) == Frame::XmlForm::Content)
            return true;
    return false;
}

QString oneLine(const Record& record)
{
    const ClassInfo& info = record.GetClassInfo();
    const FieldInfo* unit = unitField(info);
    QString content;
    QStringList others;
    for (int i = 0; i < Frame::FieldCount(info); ++i) {
        const FieldInfo& f = Frame::FieldAt(info, i);
        if (!Frame::IsFieldSet(record, f) || &f == unit)
            continue;
        if (Frame::FieldXmlForm(f) == Frame::XmlForm::Content)
            content = valueText(record, f, unit);
        else
            others.append(QStringLiteral("%1 %2").arg(Frame::FieldName(f), valueText(record, f, nullptr)));
    }
    if (content.isEmpty() && unit && Frame::IsFieldSet(record, *unit))
        content = QStringLiteral("(no value) %1").arg(Frame::FieldText(record, *unit));
    if (!others.isEmpty())
        content += QStringLiteral(" (%1)").arg(others.join(QStringLiteral(", ")));
    return content.trimmed();
}

void showRecord(const Record& record, int depth, bool all);

void showField(const Record& record, const FieldInfo& f, const FieldInfo* unit, int depth, bool all)
{
    const QString indent(depth * 2, QLatin1Char(' '));
    const bool set = Frame::IsFieldSet(record, f);
    if (!set && !all)
        return;
    if (!set && Frame::FieldKind(f) != Kind::List && Frame::FieldKind(f) != Kind::EnumList) {
        out(indent + Frame::FieldName(f) + QStringLiteral(": (unset)"));
        return;
    }
    switch (Frame::FieldKind(f)) {
    case Kind::Child: {
        const Record& child = Frame::ChildOf(record, f);
        if (isOneLiner(child.GetClassInfo()))
            out(indent + Frame::FieldName(f) + QStringLiteral(": ") + oneLine(child));
        else {
            out(indent + Frame::FieldName(f));
            showRecord(child, depth + 1, all);
        }
        return;
    }
    case Kind::List: {
        const int n = Frame::ItemCount(record, f);
        if (!set && n == 0) {
            out(indent + Frame::FieldName(f) + QStringLiteral(": (unset)"));
            return;
        }
        for (int k = 0; k < n; ++k) {
            const Record& item = Frame::ItemOf(record, f, k);
            const QString name = QStringLiteral("%1[%2]").arg(Frame::FieldName(f)).arg(k);
            if (isOneLiner(item.GetClassInfo()))
                out(indent + name + QStringLiteral(": ") + oneLine(item));
            else {
                out(indent + name);
                showRecord(item, depth + 1, all);
            }
        }
        return;
    }
    case Kind::EnumList: {
        const int n = Frame::ItemCount(record, f);
        if (!set && n == 0) {
            out(indent + Frame::FieldName(f) + QStringLiteral(": (unset)"));
            return;
        }
        for (int k = 0; k < n; ++k) {
            const QString name = Frame::EnumItemText(record, f, k);
            out(indent + QStringLiteral("%1[%2]: %3")
                             .arg(Frame::FieldName(f))
                             .arg(k)
                             .arg(name.isEmpty() ? QStringLiteral("(invalid)") : name));
        }
        return;
    }
    default: out(indent + Frame::FieldName(f) + QStringLiteral(": ") + valueText(record, f, unit));
    }
}

void showRecord(const Record& record, int depth, bool all)
{
    const ClassInfo& info = record.GetClassInfo();
    const FieldInfo* unit = unitField(info);
    for (int i = 0; i < Frame::FieldCount(info); ++i) {
        const FieldInfo& f = Frame::FieldAt(info, i);
        // A unit that goes with the record's numbers stands beside each of them.
        if (&f == unit && Frame::FieldCount(info) > 1 && !all)
            continue;
        showField(record, f, unit, depth, all);
    }
}

// --- diff ----------------------------------------------------------------------------------

QString exactText(const Record& record, const FieldInfo& f)
{
    if (Frame::FieldKind(f) == Kind::Double)
        return QString::number(Frame::FieldDouble(record, f), 'g', 17);
    const QString text = Frame::FieldText(record, f);
    if (Frame::FieldKind(f) == Kind::Enum && text.isEmpty())
        return QStringLiteral("(invalid)");
    return Frame::FieldKind(f) == Kind::Text ? QLatin1Char('"') + text + QLatin1Char('"') : text;
}

QString sideText(const Record& record, const FieldInfo& f)
{
    return Frame::IsFieldSet(record, f) ? exactText(record, f) : QStringLiteral("(unset)");
}

// Doubles compare by value, so that -0 equals 0, and a NaN equals a NaN: a
// record that holds one is the same as itself. Other values compare as
// they are written.
bool sameValue(const Record& a, const Record& b, const FieldInfo& f)
{
    const bool setA = Frame::IsFieldSet(a, f), setB = Frame::IsFieldSet(b, f);
    if (!setA || !setB)
        return setA == setB;
    if (Frame::FieldKind(f) == Kind::Double) {
        const double va = Frame::FieldDouble(a, f), vb = Frame::FieldDouble(b, f);
        return va == vb || (std::isnan(va) && std::isnan(vb));
    }
    return exactText(a, f) == exactText(b, f);
}

// The name of an enumeration value, or (invalid), or (none) past the end.
QString enumItemText(const Record& record, const FieldInfo& f, int index)
{
    if (index >= Frame::ItemCount(record, f))
        return QStringLiteral("(none)");
    const QString name = Frame::EnumItemText(record, f, index);
    return name.isEmpty() ? QStringLiteral("(invalid)") : name;
}

void diffRecords(const Record& a, const Record& b, const QString& path, int& differences)
{
    const ClassInfo& info = a.GetClassInfo();
    const QString prefix = path.isEmpty() ? QString() : path + QLatin1Char('/');
    for (int i = 0; i < Frame::FieldCount(info); ++i) {
        const FieldInfo& f = Frame::FieldAt(info, i);
        const QString where = prefix + Frame::FieldName(f);
        const bool setA = Frame::IsFieldSet(a, f), setB = Frame::IsFieldSet(b, f);
        switch (Frame::FieldKind(f)) {
        case Kind::Child:
            if (setA && setB)
                diffRecords(Frame::ChildOf(a, f), Frame::ChildOf(b, f), where, differences);
            else if (setA != setB) {
                out(QStringLiteral("%1: %2 -> %3")
                        .arg(where, setA ? QStringLiteral("(set)") : QStringLiteral("(unset)"),
                             setB ? QStringLiteral("(set)") : QStringLiteral("(unset)")));
                ++differences;
            }
            break;
        case Kind::List: {
            const int na = Frame::ItemCount(a, f), nb = Frame::ItemCount(b, f);
            for (int k = 0; k < qMax(na, nb); ++k) {
                const QString item = QStringLiteral("%1[%2]").arg(where).arg(k);
                if (k >= na || k >= nb) {
                    out(QStringLiteral("%1: only in %2").arg(item, k < na ? QStringLiteral("A") : QStringLiteral("B")));
                    ++differences;
                } else {
                    diffRecords(Frame::ItemOf(a, f, k), Frame::ItemOf(b, f, k), item, differences);
                }
            }
            break;
        }
        case Kind::EnumList: {
            const int na = Frame::ItemCount(a, f), nb = Frame::ItemCount(b, f);
            for (int k = 0; k < qMax(na, nb); ++k) {
                const QString va = enumItemText(a, f, k), vb = enumItemText(b, f, k);
                if (va != vb) {
                    out(QStringLiteral("%1[%2]: %3 -> %4").arg(where).arg(k).arg(va, vb));
                    ++differences;
                }
            }
            break;
        }
        default:
            if (!sameValue(a, b, f)) {
                out(QStringLiteral("%1: %2 -> %3").arg(where, sideText(a, f), sideText(b, f)));
                ++differences;
            }
        }
    }
}

}  // namespace

int runShow(const QStringList& args)
{
    const Arguments a = parseArguments(args, {QStringLiteral("--all")}, readOptions());
    if (!a.problem.isEmpty() || a.positional.size() != 1) {
        error(a.problem.isEmpty() ? QStringLiteral("show needs one file") : a.problem);
        return Unreadable;
    }
    LoadOptions options;
    if (!takeReadOptions(a, options))
        return Unreadable;
    Loaded loaded = load(a.positional.first(), options);
    if (!loaded.error.isEmpty()) {
        error(loaded.error);
        return Unreadable;
    }
    const Record& record = *loaded.record;
    const ClassInfo& info = record.GetClassInfo();
    QString head = Frame::ClassName(info);
    if (Frame::ClassVersionTag(info) != 0)
        head += QStringLiteral(" (version %1)").arg(record.GetVersion());
    out(head);
    if (isOneLiner(info))
        out(QStringLiteral("  ") + oneLine(record));
    else
        showRecord(record, 1, a.flags.contains(QStringLiteral("--all")));
    return Success;
}

int runDiff(const QStringList& args)
{
    const Arguments a = parseArguments(args, {}, readOptions());
    if (!a.problem.isEmpty() || a.positional.size() != 2) {
        error(a.problem.isEmpty() ? QStringLiteral("diff needs two files") : a.problem);
        return Unreadable;
    }
    // --from raw --class NAME holds for both files.
    LoadOptions options;
    if (!takeReadOptions(a, options) || !readsStandardInputOnce(a.positional))
        return Unreadable;
    Loaded left = load(a.positional.at(0), options);
    if (!left.error.isEmpty()) {
        error(left.error);
        return Unreadable;
    }
    Loaded right = load(a.positional.at(1), options);
    if (!right.error.isEmpty()) {
        error(right.error);
        return Unreadable;
    }
    const Record& ra = *left.record;
    const Record& rb = *right.record;
    if (&ra.GetClassInfo() != &rb.GetClassInfo()) {
        out(QStringLiteral("A is %1, B is %2")
                .arg(Frame::ClassName(ra.GetClassInfo()), Frame::ClassName(rb.GetClassInfo())));
        return Differs;
    }
    int differences = 0;
    if (ra.GetVersion() != rb.GetVersion()) {
        out(QStringLiteral("Version: %1 -> %2").arg(ra.GetVersion(), rb.GetVersion()));
        ++differences;
    }
    diffRecords(ra, rb, QString(), differences);
    return differences == 0 ? Success : Differs;
}

}  // namespace DossierTool
