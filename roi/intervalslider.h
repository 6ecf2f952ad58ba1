#pragma once

#include <QSlider>

#include <optional>

/// A slider that also shows which part of its range is kept.
class IntervalSlider final : public QSlider
{
    Q_OBJECT

public:
    using QSlider::QSlider;

    /// The first and the last value of that part; nothing while it is the whole range.
    void setInterval(const std::optional<QPair<int, int>> &interval);

protected:
    void paintEvent(QPaintEvent *event) override;

private:
    int xOf(int value) const;

    std::optional<QPair<int, int>> m_interval;
};
