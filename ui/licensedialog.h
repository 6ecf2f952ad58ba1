#pragma once

#include <QDialog>

/// Shows the program's name and version, and the licence text that is built in.
class LicenseDialog final : public QDialog
{
    Q_OBJECT

public:
    explicit LicenseDialog(QWidget *parent = nullptr);
};
