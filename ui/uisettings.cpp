#include "ui/uisettings.h"

#include "base/runtimeconfig.h"
#include "base/utctext.h"
#include "session/acquisitionsettings.h"
#include "ui_mainwindow.h"

#include <QMetaProperty>
#include <QSettings>

namespace {

constexpr int archiveDelaySeconds = 600; // younger images are rarely archived yet
constexpr int defaultIntervalSeconds = 3600;

constexpr char geometryKey[] = "ui/mainWindowGeometry";
constexpr char stateKey[] = "ui/mainWindowState";
constexpr char splitterKey[] = "ui/catalogSplitterState";
constexpr char headerKey[] = "ui/sourceHeaderState";
constexpr char selectedIdsKey[] = "sources/selectedIds";
constexpr char currentIdKey[] = "sources/currentId";
constexpr char lastVideoFolderKey[] = "videoPlayer/lastDirectory";

enum class Preset { None, RuntimeConfig };

/// One widget whose user property is stored; the default's type is the stored type.
struct Field
{
    const char *key;
    QWidget *widget; // not owned
    QVariant defaultValue;
    Preset preset;
};

QVector<Field> fields(const Ui::MainWindow &form)
{
    const QDateTime end =
        UtcText::wholeSecond(QDateTime::currentDateTimeUtc().addSecs(-archiveDelaySeconds));
    const QDateTime start = end.addSecs(-defaultIntervalSeconds);
    const AcquisitionSettings defaults;
    return {
        {"acquisition/startUtc", form.startEdit, start, Preset::None},
        {"acquisition/endUtc", form.endEdit, end, Preset::None},
        {"acquisition/cadenceSeconds", form.cadenceSpin, defaults.cadenceSeconds,
         Preset::RuntimeConfig},
        {"acquisition/maxTimeErrorSeconds", form.timeErrorSpin, defaults.maxTimeErrorSeconds,
         Preset::RuntimeConfig},
        {"acquisition/useSourceTimingProfiles", form.sourceTimingProfilesCheck,
         defaults.useSourceTimingProfiles, Preset::RuntimeConfig},
        {"acquisition/imageWidth", form.widthSpin, defaults.imageWidth, Preset::RuntimeConfig},
        {"video/fps", form.fpsSpin, defaults.videoFps, Preset::RuntimeConfig},
        {"video/crf", form.crfSpin, defaults.videoCrf, Preset::RuntimeConfig},
        {"acquisition/keepFrames", form.keepFramesCheck, defaults.keepFrames,
         Preset::RuntimeConfig},
        {"video/sourceOverlay", form.sourceOverlayCheck, defaults.sourceOverlay, Preset::None},
        {"video/scaleOverlay", form.scaleOverlayCheck, defaults.scaleOverlay, Preset::None},
        {"video/create", form.createVideosCheck, defaults.createVideos, Preset::RuntimeConfig},
    };
}

/// The user's settings, opened for one load or save.
class Store final : public QSettings
{
public:
    Store() : QSettings(QStringLiteral("Brannock Works"), QStringLiteral("Orvik")) {}
};

QVariant storedValue(const Store &store, const Field &field)
{
    const QString key = QLatin1String(field.key);
    if (store.contains(key))
        return store.value(key);
    if (field.preset == Preset::RuntimeConfig) {
        QVariant preset = RuntimeConfig::preset(key);
        if (preset.isValid())
            return preset;
    }
    return field.defaultValue;
}

/// @p value as @p type. What is not a number becomes 0, what is not a time an invalid one; any text
/// but "", "0" and "false" is true.
QVariant converted(const QVariant &value, QVariant::Type type)
{
    switch (static_cast<QMetaType::Type>(type)) {
    case QMetaType::Int:
        return value.toInt();
    case QMetaType::Bool:
        return value.toBool();
    case QMetaType::QDateTime:
        return UtcText::wholeSecond(value.toDateTime().toUTC());
    default:
        return value;
    }
}

void setValue(const Field &field, const QVariant &value)
{
    if (value.type() == QVariant::DateTime && !value.toDateTime().isValid())
        return;
    field.widget->metaObject()->userProperty().write(field.widget, value);
}

QVariant valueOf(const Field &field)
{
    return converted(field.widget->metaObject()->userProperty().read(field.widget),
                     field.defaultValue.type());
}

void saveSelection(Store &store, QTreeWidget *tree)
{
    if (!CatalogTree::holdsLeaf(tree))
        return; // without a catalog nothing was chosen: keep what is stored

    QStringList ids;
    const QVector<DataSource> sources = CatalogTree::tickedSources(tree);
    for (const DataSource &source : sources)
        ids.append(QString::number(source.sourceId));
    store.setValue(QLatin1String(selectedIdsKey), ids);

    if (CatalogTree::isLeaf(tree->currentItem()))
        store.setValue(QLatin1String(currentIdKey), CatalogTree::currentId(tree));
    else
        store.remove(QLatin1String(currentIdKey));
}

} // namespace

void UiSettings::loadFields(const Ui::MainWindow &form)
{
    const Store store;
    const QVector<Field> all = fields(form);
    for (const Field &field : all)
        setValue(field, converted(storedValue(store, field), field.defaultValue.type()));
}

void UiSettings::restoreLayout(QMainWindow *window, const Ui::MainWindow &form)
{
    const Store store;
    const auto restore = [&store](const char *key, auto apply) {
        const QByteArray stored = store.value(QLatin1String(key)).toByteArray();
        if (!stored.isEmpty())
            apply(stored);
    };
    restore(geometryKey, [&](const QByteArray &geometry) { window->restoreGeometry(geometry); });
    restore(stateKey, [&](const QByteArray &state) { window->restoreState(state); });
    restore(splitterKey,
            [&](const QByteArray &state) { form.catalogSplitter->restoreState(state); });
    restore(headerKey,
            [&](const QByteArray &state) { form.sourcesTree->header()->restoreState(state); });
}

CatalogTree::Selection UiSettings::loadSelection()
{
    const Store store;
    CatalogTree::Selection selection;
    const QStringList ids = store.value(QLatin1String(selectedIdsKey)).toStringList();
    for (const QString &text : ids) {
        bool isNumber = false;
        const int id = text.toInt(&isNumber);
        if (isNumber)
            selection.tickedIds.insert(id);
    }
    selection.currentId = store.value(QLatin1String(currentIdKey), -1).toInt();
    return selection;
}

void UiSettings::save(const QMainWindow &window, const Ui::MainWindow &form)
{
    Store store;
    store.setValue(QLatin1String(geometryKey), window.saveGeometry());
    store.setValue(QLatin1String(stateKey), window.saveState());
    store.setValue(QLatin1String(splitterKey), form.catalogSplitter->saveState());
    store.setValue(QLatin1String(headerKey), form.sourcesTree->header()->saveState());
    const QVector<Field> all = fields(form);
    for (const Field &field : all)
        store.setValue(QLatin1String(field.key), valueOf(field));
    saveSelection(store, form.sourcesTree);
}

QString UiSettings::lastVideoFolder()
{
    return Store().value(QLatin1String(lastVideoFolderKey)).toString();
}

void UiSettings::saveLastVideoFolder(const QString &folder)
{
    Store().setValue(QLatin1String(lastVideoFolderKey), folder);
}
