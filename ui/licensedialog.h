#pragma once

#include <QDialog>

/// Shows the licence text that is built into the program.
class LicenseDialog : public QDialog
{
    Q_OBJECT

public:
    explicit LicenseDialog(QWidget *parent = nullptr);
};
