#include "ui/licensedialog.h"

#include <QApplication>
#include <QDialogButtonBox>
#include <QFile>
#include <QFontDatabase>
#include <QFontMetrics>
#include <QLabel>
#include <QPlainTextEdit>
#include <QVBoxLayout>

namespace {

constexpr int columns = 104; // the longest line of the text, and a scroll bar
constexpr int rows = 36;

QString licenseText()
{
    QFile file(QStringLiteral(":/Orvik/LICENSE"));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QPlainTextEdit *newTextView(QWidget *parent)
{
    auto *view = new QPlainTextEdit(licenseText(), parent);
    view->setObjectName(QStringLiteral("licenseText"));
    view->setAccessibleName(LicenseDialog::tr("Licence text"));
    view->setReadOnly(true);
    view->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    view->setFont(QFontDatabase::systemFont(QFontDatabase::FixedFont));
    const QFontMetrics metrics(view->font());
    view->setMinimumSize(metrics.averageCharWidth() * columns / 2, metrics.lineSpacing() * 10);
    return view;
}

} // namespace

LicenseDialog::LicenseDialog(QWidget *parent) : QDialog(parent)
{
    setWindowTitle(tr("Freeware license"));
    setWindowFlag(Qt::WindowContextHelpButtonHint, false);
    auto *program = new QLabel(
        QStringLiteral("%1 %2").arg(QApplication::applicationName(), QStringLiteral(ORVIK_VERSION)),
        this);
    program->setObjectName(QStringLiteral("programLabel"));
    auto *view = newTextView(this);
    auto *buttons = new QDialogButtonBox(QDialogButtonBox::Close, this);
    connect(buttons, &QDialogButtonBox::rejected, this, &LicenseDialog::reject);

    auto *layout = new QVBoxLayout(this);
    layout->addWidget(program);
    layout->addWidget(view);
    layout->addWidget(buttons);
    const QFontMetrics metrics(view->font());
    resize(metrics.averageCharWidth() * columns, metrics.lineSpacing() * rows);
}
