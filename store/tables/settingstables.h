#pragma once

#include "store/tables/tablefamily.h"

#include <QHash>
#include <QStringList>

/// The settings of a project: five tables of key and value.
///
/// Values are text; a missing key reads as empty. A per-line value is a comma list, one part per line; a line beyond
/// the end takes the last part. Where a quote is not spoken of, a value is kept as it is; a key is a literal.
class SettingsTables : public TableFamily
{
public:
    explicit SettingsTables(TableContext &context)
        : TableFamily(context)
    {
    }

    QString getGeneralSetting(const QString &key);
    QString getGeneralSetting(const QString &key, quint8 line);
    [[nodiscard]] bool setGeneralSetting(const QString &key, const QString &value, Quotes quotes = Quotes::Literal);
    /// The parts of the other lines are kept as they are.
    [[nodiscard]] bool setGeneralSetting(const QString &key, const QString &value, quint8 line,
                                         Quotes quotes = Quotes::Literal);
    /// The keys whose comma lists follow the lines when these are added, removed or cut.
    static QStringList getGeneralSettingKeys();
    bool generalSettingExists(const QString &key);
    /// All of the table, from one scan.
    QHash<QString, QString> getGeneralSettings();

    /// All of the table, from one scan.
    QHash<QString, QString> getJ1939Settings();
    QString getJ1939Setting(const QString &key);
    QString getJ1939Setting(const QString &key, quint8 line);
    [[nodiscard]] bool setJ1939Setting(const QString &key, const QString &value);

    /// The line that the description settings address.
    void setCurrentLine(quint8 line) { currentLine_ = line; }
    quint8 currentLine() const { return currentLine_; }
    QString getDescriptionSetting(const QString &key);
    [[nodiscard]] bool setDescriptionSetting(const QString &key, const QString &value);
    bool descriptionSettingExists(const QString &key);
    /// Writes what the description of a line lacks of the defaults; the line becomes the current one.
    [[nodiscard]] bool addDescriptionDefaults(quint8 line);

    QString getEnergyBusSetting(const QString &key);
    [[nodiscard]] bool setEnergyBusSetting(const QString &key, const QString &value, Quotes quotes = Quotes::Literal);
    [[nodiscard]] bool removeEnergyBusSetting(const QString &key);
    QStringList getEnergyBusSettingKeys();

    QString getMiscSetting(const QString &key);
    [[nodiscard]] bool setMiscSetting(const QString &key, const QString &value);
    bool miscSettingExists(const QString &key);

    /// Hands the values of the line before it on to a new line, in the lists that have one part per line.
    [[nodiscard]] bool extendLineLists(quint8 line);
    /// Removes what the tables hold of a line; the parts of later lines move down by one place.
    [[nodiscard]] bool removeLineSettings(quint8 line);
    /// Cuts the lists that have one part per line behind the part of the last line.
    [[nodiscard]] bool trimLineLists(quint8 lastLine);

private:
    enum class Write
    {
        Failed,
        Unchanged,
        Written
    };

    QString descriptionKey(const QString &key) const;
    QString settingOf(QLatin1StringView table, const QString &key);
    QHash<QString, QString> settingsOf(QLatin1StringView table);
    bool settingExists(QLatin1StringView table, const QString &key);
    Write write(QLatin1StringView table, const QString &key, const QString &value, Quotes quotes);
    bool writeAndNotify(QLatin1StringView table, const QString &key, const QString &value, Quotes quotes, Change change,
                        const StoreRecords::ChangeSet &fields = {});
    bool removeDescription(quint8 line);
    bool dropListPart(QLatin1StringView table, quint8 line);

    quint8 currentLine_ = 0;
};
