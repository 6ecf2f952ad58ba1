#include "sessiontool/toolorder.h"

#include <QCommandLineParser>

#include <algorithm>
#include <array>

namespace {

using Command = ToolOrder::Command;

struct CommandText
{
    Command command;
    const char *name;
    const char *summary; ///< a line in the list of commands
    const char *description;
};

constexpr std::array<CommandText, 4> commands = {{
    {Command::Report, "report", "what was asked for, what came, and where the gaps are",
     "Shows for each datasource how its requests ended, where its frames leave gaps\n"
     "longer than twice the usual step between its requests, and which frame shows\n"
     "which time. All times are UTC."},
    {Command::Verify, "verify", "whether pictures, manifest, descriptor and films agree",
     "Checks that the pictures of every accepted frame are there and whole, that the\n"
     "counts of session.json are those of manifest.csv, that names and times fit\n"
     "together, and that each film has as many pictures as there are frames. Each\n"
     "finding is one line."},
    {Command::Recover, "recover", "write the session.json that a closed or killed run lacks",
     "Writes session.json from manifest.csv and the folders, so that the region tool\n"
     "and the command \"encode\" can use the session. What they do not contain gets\n"
     "Orvik's defaults. A session.json that is there is never touched."},
    {Command::Encode, "encode", "make the films that are missing",
     "Makes the film of each datasource that has none from its video_frames, with the\n"
     "session's own rate and quality and with the ffmpeg that sys/orvik.ini beside\n"
     "this program names. A whole film is left alone."},
}};

const CommandText *findCommand(const QString &name)
{
    const auto *const found =
        std::find_if(commands.cbegin(), commands.cend(), [&name](const CommandText &command) {
            return name == QLatin1String(command.name);
        });
    return found == commands.cend() ? nullptr : &*found;
}

QString commandList()
{
    constexpr int nameWidth = 9;
    QString list;
    for (const CommandText &command : commands)
        list += QStringLiteral("  ") + QString::fromLatin1(command.name).leftJustified(nameWidth) +
                QLatin1String(command.summary) + QLatin1Char('\n');
    return list;
}

QString generalHelp()
{
    return QStringLiteral("Usage: orvik-session COMMAND [options] DIR\n"
                          "Looks after a session of Orvik when the window is gone. DIR is the "
                          "session's folder.\n\n"
                          "Commands:\n%1\n"
                          "\"orvik-session COMMAND --help\" tells the options of a command.\n"
                          "Exit codes: 0 all is well; 1 something is wrong with the session; "
                          "2 wrong usage;\n3 a file cannot be read or written.\n")
        .arg(commandList());
}

void addOptions(QCommandLineParser &parser, Command command)
{
    const auto add = [&parser](const char *name, const char *description,
                               const char *value = nullptr) {
        parser.addOption({QString::fromLatin1(name), QString::fromLatin1(description),
                          QString::fromLatin1(value)});
    };
    parser.addOption(
        {{QStringLiteral("h"), QStringLiteral("help")}, QStringLiteral("Displays this help.")});
    switch (command) {
    case Command::Report:
        add("json", "Prints JSON, the frames included, for other programs.");
        add("frames", "Lists all frames with their times.");
        break;
    case Command::Verify:
        add("decode", "Decodes every picture, which takes longer, instead of looking at its "
                      "beginning and end only.");
        break;
    case Command::Recover:
        break;
    case Command::Encode:
        add("fps", "Frames per second, 1 to 120, in place of the session's.", "N");
        add("crf", "H.264 quality, 0 to 51, lower is better, in place of the session's.", "N");
        add("replace-broken", "Makes films anew that are cut off or lack pictures.");
        break;
    }
}

/// The number of option @p name within its limits; sets @p mistake when it is something else.
std::optional<int> number(const QCommandLineParser &parser, const char *name,
                          bool (*isAllowed)(int), QString *mistake)
{
    const QString option = QString::fromLatin1(name);
    if (!parser.isSet(option))
        return std::nullopt;
    bool isNumber = false;
    const int value = parser.value(option).toInt(&isNumber);
    if (!isNumber || !isAllowed(value))
        *mistake = QStringLiteral("--%1 does not take \"%2\".").arg(option, parser.value(option));
    return value;
}

ToolOrder toOrder(const QCommandLineParser &parser, Command command, QString *mistake)
{
    const auto isSet = [&parser](const char *name) {
        return parser.optionNames().contains(QLatin1String(name));
    };
    ToolOrder order;
    order.command = command;
    order.directory = parser.positionalArguments().value(1);
    order.json = isSet("json");
    order.frames = isSet("frames");
    order.decode = isSet("decode");
    order.replaceBroken = isSet("replace-broken");
    if (command == Command::Encode) {
        order.fps = number(parser, "fps", &ToolOrders::isFps, mistake);
        order.crf = number(parser, "crf", &ToolOrders::isCrf, mistake);
    }
    return order;
}

ToolRequest parseCommand(const CommandText &command, const QStringList &arguments)
{
    const QString name = QString::fromLatin1(command.name);
    QCommandLineParser parser;
    parser.setApplicationDescription(QString::fromLatin1(command.description));
    parser.addPositionalArgument(name, QString::fromLatin1(command.summary));
    parser.addPositionalArgument(QStringLiteral("DIR"),
                                 QStringLiteral("The folder of the session."));
    addOptions(parser, command.command);
    ToolRequest request;
    if (!parser.parse(arguments))
        request.mistake = parser.errorText();
    else if (parser.isSet(QStringLiteral("help")))
        request.text = parser.helpText();
    else if (parser.positionalArguments().size() != 2)
        request.mistake = QStringLiteral("%1 takes one folder.").arg(name);
    else
        request.order = toOrder(parser, command.command, &request.mistake);
    if (!request.mistake.isEmpty()) {
        request.order.reset();
        request.mistake += QStringLiteral(" See \"orvik-session %1 --help\".").arg(name);
    }
    return request;
}

} // namespace

bool ToolOrders::isFps(int fps)
{
    return fps >= 1 && fps <= 120;
}

bool ToolOrders::isCrf(int crf)
{
    return crf >= 0 && crf <= 51;
}

ToolRequest ToolOrders::parse(const QStringList &arguments)
{
    const QString word = arguments.value(1);
    if (const CommandText *const command = findCommand(word))
        return parseCommand(*command, arguments);
    ToolRequest request;
    if (word == QLatin1String("--help") || word == QLatin1String("-h"))
        request.text = generalHelp();
    else if (word == QLatin1String("--version") || word == QLatin1String("-v"))
        request.text = QStringLiteral("orvik-session " ORVIK_VERSION "\n");
    else if (word.isEmpty())
        request.mistake = QStringLiteral("no command. See \"orvik-session --help\".");
    else
        request.mistake =
            QStringLiteral("there is no command \"%1\". See \"orvik-session --help\".").arg(word);
    return request;
}
