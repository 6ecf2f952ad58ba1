#include "app/applicationlook.h"

#include "app/applicationstyle.h"

#include <QApplication>
#include <QPalette>

namespace {

struct RoleColour
{
    QPalette::ColorRole role;
    QRgb colour;
};

constexpr RoleColour everyGroup[] = {
    {QPalette::Window, qRgb(45, 45, 48)},
    {QPalette::WindowText, qRgb(235, 235, 235)},
    {QPalette::Base, qRgb(30, 30, 32)},
    {QPalette::AlternateBase, qRgb(50, 50, 53)},
    {QPalette::ToolTipBase, qRgb(38, 38, 40)},
    {QPalette::ToolTipText, qRgb(245, 245, 245)},
    {QPalette::Text, qRgb(235, 235, 235)},
    {QPalette::Button, qRgb(55, 55, 58)},
    {QPalette::ButtonText, qRgb(235, 235, 235)},
    {QPalette::BrightText, qRgb(255, 90, 90)},
    {QPalette::Link, qRgb(90, 170, 255)},
    {QPalette::Highlight, qRgb(42, 130, 218)},
    {QPalette::HighlightedText, qRgb(255, 255, 255)},
};

constexpr RoleColour disabledGroup[] = {
    {QPalette::WindowText, qRgb(125, 125, 125)},      {QPalette::Text, qRgb(125, 125, 125)},
    {QPalette::ButtonText, qRgb(125, 125, 125)},      {QPalette::Highlight, qRgb(70, 70, 72)},
    {QPalette::HighlightedText, qRgb(150, 150, 150)},
};

QPalette darkPalette(QPalette palette)
{
    for (const RoleColour &entry : everyGroup)
        palette.setColor(entry.role, QColor(entry.colour));
    for (const RoleColour &entry : disabledGroup)
        palette.setColor(QPalette::Disabled, entry.role, QColor(entry.colour));
    return palette;
}

} // namespace

void applyApplicationLook(QApplication &application)
{
    QApplication::setAttribute(Qt::AA_UseHighDpiPixmaps); // icons as sharp as the text
    QApplication::setStyle(new ApplicationStyle);         // the application owns it
    QApplication::setPalette(darkPalette(QApplication::palette()));
    application.setStyleSheet(
        QStringLiteral("QToolTip { color: #f5f5f5; background-color: #262628; border: 1px solid "
                       "#6a6a6a; padding: 3px; }"));
}
