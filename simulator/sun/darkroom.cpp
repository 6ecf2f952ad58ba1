#include "simulator/sun/darkroom.h"

#include "simulator/sun/lightfield.h"

#include <QImage>

#include <algorithm>
#include <array>
#include <cmath>

namespace Simulator {

namespace {

constexpr int lightSteps = 1 << 14;
constexpr float brightest = 254.0F;

/// Steps of the colour table, in 1/256, by light.
std::vector<int> curveOf(const Development &development)
{
    std::vector<int> table(lightSteps + 1);
    for (int step = 0; step <= lightSteps; ++step) {
        const float light = static_cast<float>(step) / lightSteps;
        const float lifted = development.curve > 0.0F ? std::log1p(development.curve * light) /
                                                            std::log1p(development.curve)
                                                      : light;
        table[static_cast<size_t>(step)] = static_cast<int>(lifted * brightest * 256.0F);
    }
    return table;
}

/// The noise of the detector: triangular, so that it has no far outliers.
class Grain final
{
public:
    Grain(quint64 seed, float spread) : m_state(seed), m_factor(static_cast<int>(spread * 256.0F))
    {}

    /// In 1/256 of a step.
    int next()
    {
        m_state = m_state * 6364136223846793005ULL + 1442695040888963407ULL;
        const int first = static_cast<int>(m_state >> 56);
        const int second = static_cast<int>(m_state >> 48) & 255;
        return ((first - second) * m_factor) >> 7;
    }

private:
    quint64 m_state;
    int m_factor;
};

} // namespace

QImage develop(const LightField &field, const QVector<QRgb> &palette,
               const Development &development)
{
    QImage picture(field.widthPx(), field.heightPx(), QImage::Format_Indexed8);
    picture.setColorTable(palette);
    const std::vector<int> curve = curveOf(development);
    const float scale = static_cast<float>(lightSteps) / (development.white - development.black);
    const float black = development.black;
    Grain grain(development.grainSeed, development.grain);
    for (int line = 0; line < field.heightPx(); ++line) {
        const float y = field.yOf(line);
        const float *light = field.row(line);
        uchar *pixel = picture.scanLine(line);
        for (int column = 0; column < field.widthPx(); ++column) {
            const float x = field.xOf(column);
            const int step =
                std::min(static_cast<int>((light[column] - black) * scale), lightSteps);
            const int level = curve[static_cast<size_t>(std::max(step, 0))];
            // Nothing shines beyond the corona: what is dark there stays calm.
            const int noise = grain.next() * std::min(level, 2048) / 2048;
            const int least = x * x + y * y < 1.0F ? development.darkestOnDisk : 0;
            *pixel++ = static_cast<uchar>(
                std::clamp((level + noise + 128) >> 8, least, static_cast<int>(brightest)));
        }
    }
    return picture;
}

} // namespace Simulator
