#include "acquisition/sourcetiming.h"

#include "base/runtimeconfig.h"
#include "session/acquisitionsettings.h"
#include "session/datasource.h"

namespace {

/// Whether @p instrument, in upper case, opens the nickname as a word or is a step of the path.
bool isOf(const DataSource &source, const QString &instrument)
{
    const QString nickname = source.nickname.toUpper();
    const QString path = source.path.toUpper();
    const QString step = QLatin1Char('/') + instrument;
    return nickname == instrument || nickname.startsWith(instrument + QLatin1Char(' ')) ||
           path.contains(step + QLatin1Char('/')) || path.endsWith(step);
}

} // namespace

QString SourceTiming::toText(SourceTimingProfile profile)
{
    switch (profile) {
    case SourceTimingProfile::Aia:
        return QStringLiteral("AIA");
    case SourceTimingProfile::Suvi:
        return QStringLiteral("SUVI");
    case SourceTimingProfile::Default:
        break;
    }
    return QStringLiteral("DEFAULT");
}

SourceTimingProfile SourceTiming::profileOf(const DataSource &source)
{
    if (isOf(source, QStringLiteral("SUVI")))
        return SourceTimingProfile::Suvi;
    if (isOf(source, QStringLiteral("AIA")))
        return SourceTimingProfile::Aia;
    return SourceTimingProfile::Default;
}

bool SourceTiming::isDense(const DataSource &source)
{
    return profileOf(source) == SourceTimingProfile::Aia;
}

int SourceTiming::toleranceSeconds(const DataSource &source, const AcquisitionSettings &settings)
{
    if (!settings.useSourceTimingProfiles)
        return settings.maxTimeErrorSeconds;
    switch (profileOf(source)) {
    case SourceTimingProfile::Aia:
        return RuntimeConfig::aiaMaxTimeErrorSeconds();
    case SourceTimingProfile::Suvi:
        return RuntimeConfig::suviMaxTimeErrorSeconds();
    case SourceTimingProfile::Default:
        break;
    }
    return settings.maxTimeErrorSeconds;
}
