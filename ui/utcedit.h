#pragma once

#include "ui/utctyping.h"

#include <QDateTimeEdit>

/**
 * A date-time edit for UTC in which a stamp can be typed or pasted as it stands.
 *
 * Arrow keys, wheel and calendar work as in any such edit. Typed text takes effect at once if it is
 * a time. Otherwise it stays visible until the field is left, which then reports it and keeps the
 * previous time.
 */
class UtcEdit final : public QDateTimeEdit
{
    Q_OBJECT

public:
    explicit UtcEdit(QWidget *parent = nullptr);

    /// False while the field shows something that is not a time; dateTime() is then the last one.
    bool showsTime() const;

    void stepBy(int steps) override;
    /// Handles text that is pasted or otherwise inserted as a whole.
    QValidator::State validate(QString &text, int &position) const override;

signals:
    /// The input is not a time; @p text tells the user.
    void refused(const QString &text);

protected:
    void changeEvent(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    bool focusNextPrevChild(bool next) override;

private:
    void reserveWidth();
    bool typeKey(const QKeyEvent &event);
    void erase(bool backwards);
    int insertPosition() const;
    UtcTyping::Run newRun(int position) const;
    void showRun();
    void endRun();
    bool isTime(const UtcTyping::Reading &reading) const;
    bool isAllowed(const QDateTime &time) const;

    std::optional<UtcTyping::Run> m_run; // what is being typed
    int m_cursor = 0;                    // where the text being pasted begins
};
