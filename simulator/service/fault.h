#pragma once

#include <QObject>

#include <limits>
#include <optional>

namespace Simulator {

Q_NAMESPACE

/// The four requests that Orvik makes.
enum class Operation { GetDataSources, GetJPX, GetClosestImage, DownloadImage };
Q_ENUM_NS(Operation)

/// What can be wrong with an answer.
enum class FaultKind {
    Status,           ///< status code @c value with the body that the real service sends
    Delay,            ///< the true answer after @c value milliseconds
    Hang,             ///< accepted and never answered
    Refuse,           ///< the connection is closed before any byte of an answer
    ResetInBody,      ///< the connection breaks in the middle of the body: reset, with @c value 1
                      ///< closed in order
    TruncatedPng,     ///< a cut-off PNG whose Content-Length matches
    HtmlBody,         ///< status 200, a web page
    JsonErrorBody,    ///< status 200, the service's error object
    EmptyBody,        ///< status 200, no byte
    CutOffJson,       ///< status 200, JSON that ends in the middle
    JsonArray,        ///< status 200, "[]"
    WrongId,          ///< a closest image without a usable id: "0", with @c value 1 a word,
                      ///< 2 null, 3 no id at all
    NumberId,         ///< a closest image whose id is a JSON number
    NumericStrings,   ///< a closest image whose numbers are all texts
    BlackBlock,       ///< a PNG with one renderer block left black
    TransparentBlock, ///< a PNG with one renderer block left transparent
    StaleDate,        ///< a closest image @c value seconds away from the one asked for
    LeadingNewline,   ///< the true answer after an empty line
    NoRsun,           ///< a closest image of an older server, without "rsun"
};
Q_ENUM_NS(FaultKind)

/// Applies to requests first .. first + count - 1 of one operation, counted from 1.
struct Fault
{
    Operation operation;
    FaultKind kind;
    int value = 0;
    int first = 1;
    int count = std::numeric_limits<int>::max();
};

/// "GetClosestImage:Status:503:2:1": a fault's members in order, of which the last three may be
/// left out. None when it is no such text.
std::optional<Fault> faultFromText(const QString &text);

} // namespace Simulator
