// SPDX-FileCopyrightText: 2026 The trelvik developers
//
// SPDX-License-Identifier: GPL-2.0-or-later

#include "AuxParFamilies.h"

#include "Dictionary.h"
#include "LabelText.h"

#include <QComboBox>
#include <QCoreApplication>
#include <QDateTime>
#include <QLineEdit>
#include <QSpinBox>
#include <QStringList>

namespace
{
QString trObject(const char *text)
{
    return QCoreApplication::translate("QObject", text);
}

bool intCarriesValue(const QVariant &value)
{
    bool ok = false;
    const int number = value.toInt(&ok);
    return ok && number != -1;
}
}

// Integer ------------------------------------------------------------------

bool AuxParBaseInteger::isValid() const
{
    return intCarriesValue(m_value);
}

QString AuxParBaseInteger::toString() const
{
    return isValid() ? QString::number(m_value.toInt()) : QString();
}

QWidget *AuxParBaseInteger::createEditor() const
{
    auto *spin = new QSpinBox;
    if (kind().editor == AuxParEditor::Spin)
        spin->setRange(0, kind().spinMax);
    return spin;
}

// Long integer --------------------------------------------------------------

bool AuxParBaseLongLong::carriesValue(const QVariant &value)
{
    bool ok = false;
    const qlonglong number = value.toLongLong(&ok);
    // Deliberately the low 32 bits: a value whose low word is all ones counts as missing.
    return ok && static_cast<qint32>(number) != -1;
}

bool AuxParBaseLongLong::isValid() const
{
    return carriesValue(m_value);
}

QString AuxParBaseLongLong::toString() const
{
    return isValid() ? QString::number(m_value.toLongLong()) : QString();
}

QWidget *AuxParBaseLongLong::createEditor() const
{
    return new QLineEdit;
}

// Security label -------------------------------------------------------------

namespace
{
bool splitLabel(const QString &text, int fields[5])
{
    if (text.isEmpty())
        return false;
    const QVector<QStringRef> parts = text.splitRef(QLatin1Char(':'), Qt::KeepEmptyParts);
    if (parts.size() != 5)
        return false;
    for (int i = 0; i < 5; ++i) {
        bool ok = false;
        fields[i] = parts.at(i).toInt(&ok, 10);
        if (!ok)
            return false;
    }
    return true;
}
}

bool AuxParBaseMac::isValid() const
{
    int fields[5];
    return splitLabel(m_value.toString(), fields);
}

QString AuxParBaseMac::toString() const
{
    int fields[5];
    if (!splitLabel(m_value.toString(), fields))
        return QString();
    return trObject(QT_TRANSLATE_NOOP("QObject", "MAC level: %1, MIC level: %2, MAC categories: %3"))
        .arg(LabelText::level(fields[0] & 0xff),
             LabelText::integrityLevel(fields[1]),
             LabelText::categories(static_cast<quint64>(static_cast<quint32>(fields[2]))));
}

QWidget *AuxParBaseMac::createEditor() const
{
    auto *edit = new QLineEdit;
    if (kind().editor == AuxParEditor::MacLabel)
        edit->setPlaceholderText(QStringLiteral("0:0:0:0:0"));
    return edit;
}

// Signal ---------------------------------------------------------------------

bool AuxParBaseSignal::isValid() const
{
    return intCarriesValue(m_value);
}

QString AuxParBaseSignal::toString() const
{
    return isValid() ? Dictionary::instance().signalName(m_value.toInt()) : QString();
}

QWidget *AuxParBaseSignal::createEditor() const
{
    auto *combo = new QComboBox;
    const auto &signalNames = Dictionary::instance().signalNames();
    for (auto it = signalNames.cbegin(); it != signalNames.cend(); ++it)
        combo->addItem(QStringLiteral("%1 (%2)").arg(it.value()).arg(it.key()), it.key());
    return combo;
}

// Source ---------------------------------------------------------------------

bool AuxParBaseSource::isValid() const
{
    return !m_value.toString().isEmpty();
}

QString AuxParBaseSource::toString() const
{
    if (!isValid())
        return QString();
    const Dictionary &dictionary = Dictionary::instance();
    const QString source = m_value.toString();
    return dictionary.hasSource(source) ? dictionary.sourceText(source) : dictionary.unrecognizedSourceText();
}

QWidget *AuxParBaseSource::createEditor() const
{
    auto *combo = new QComboBox;
    const auto &sources = Dictionary::instance().sources();
    for (auto it = sources.cbegin(); it != sources.cend(); ++it)
        combo->addItem(it.value(), it.key());
    return combo;
}

// String ---------------------------------------------------------------------

bool AuxParBaseString::isValid() const
{
    return !m_value.toString().isEmpty();
}

QString AuxParBaseString::toString() const
{
    return m_value.toString();
}

QWidget *AuxParBaseString::createEditor() const
{
    auto *edit = new QLineEdit;
    if (kind().editor == AuxParEditor::Categories) {
        // A category set is entered the way the label tools print it.
        edit->setPlaceholderText(QStringLiteral("0,1,2"));
        edit->setToolTip(trObject(QT_TRANSLATE_NOOP("QObject", "Comma-separated category numbers")));
    }
    return edit;
}

// Time -----------------------------------------------------------------------

bool AuxParBaseTime::carriesValue(const QVariant &value)
{
    return value.toDateTime().isValid();
}

bool AuxParBaseTime::isValid() const
{
    return carriesValue(m_value);
}

QString AuxParBaseTime::toString() const
{
    return isValid() ? m_value.toDateTime().toString(Qt::ISODate) : QString();
}

QWidget *AuxParBaseTime::createEditor() const
{
    return nullptr;
}

// Boolean --------------------------------------------------------------------

bool AuxParBaseBool::isValid() const
{
    bool ok = false;
    const int number = m_value.toInt(&ok);
    if (ok && number == -1)
        return false;
    return m_value.canConvert<bool>();
}

QString AuxParBaseBool::toString() const
{
    if (!isValid())
        return QString();
    return trObject(m_value.toBool() ? kind().trueWord : kind().falseWord);
}

QWidget *AuxParBaseBool::createEditor() const
{
    auto *combo = new QComboBox;
    combo->addItem(trObject(kind().trueWord), true);
    combo->addItem(trObject(kind().falseWord), false);
    return combo;
}
