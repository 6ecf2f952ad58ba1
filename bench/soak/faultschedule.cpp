#include "bench/soak/faultschedule.h"

#include <algorithm>
#include <array>

namespace {

struct Way
{
    const char *kind; // with its value
    Effect effect;
};

constexpr std::array lookupWays = {
    Way{"HtmlBody", Effect::LookupError},   Way{"StaleDate:3600", Effect::RejectedTime},
    Way{"Refuse", Effect::LookupError},     Way{"CutOffJson", Effect::LookupError},
    Way{"Status:503", Effect::CurlRetry},   Way{"WrongId", Effect::LookupError},
    Way{"Status:400", Effect::LookupError}, Way{"ResetInBody", Effect::LookupError},
};
constexpr std::array downloadWays = {
    Way{"TruncatedPng", Effect::DecodeRetry},  Way{"EmptyBody", Effect::DownloadError},
    Way{"ResetInBody", Effect::DownloadError}, Way{"HtmlBody", Effect::DecodeRetry},
    Way{"Status:503", Effect::CurlRetry},      Way{"Status:404", Effect::DownloadError},
};

} // namespace

FaultSchedule::FaultSchedule(int requests)
{
    constexpr int spacing = 50;
    const auto add = [&](const char *request, const auto &ways) {
        for (int number = spacing / 2, i = 0; number <= requests; number += spacing, ++i) {
            const Way &way = ways[static_cast<std::size_t>(i) % ways.size()];
            m_faults.append({QLatin1String(request), number, QLatin1String(way.kind), way.effect});
        }
    };
    add("GetClosestImage", lookupWays);
    add("DownloadImage", downloadWays);
}

void FaultSchedule::hang(const char *request, int number, Effect effect)
{
    m_faults.append({QLatin1String(request), number, QStringLiteral("Hang"), effect});
}

QStringList FaultSchedule::arguments() const
{
    QStringList arguments;
    for (const Fault &fault : m_faults) {
        const bool hasValue = fault.kind.contains(QLatin1Char(':'));
        arguments << QStringLiteral("--fault")
                  << QStringLiteral("%1:%2:%3:1")
                         .arg(fault.request,
                              hasValue ? fault.kind : fault.kind + QStringLiteral(":0"),
                              QString::number(fault.number));
    }
    return arguments;
}

int FaultSchedule::count(const char *request, Effect effect, int requests) const
{
    return static_cast<int>(
        std::count_if(m_faults.cbegin(), m_faults.cend(), [&](const Fault &fault) {
            return fault.request == QLatin1String(request) && fault.effect == effect &&
                   fault.number <= requests;
        }));
}
