#include "imaging/blankblock.h"

#include "imaging/imagemetadata.h"

#include <QImage>
#include <QJsonObject>
#include <QRect>
#include <QString>

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

using ImageMetadata::metadataNumber;

namespace {

constexpr int smallestSidePx = 256;       // fewer than four cells would tell nothing
constexpr double smallestRadiusPx = 32.0; // no cell fits into a smaller disk
constexpr double searchedRadius = 0.9;    // the limb itself may be dark

/// Cells follow the picture, within bounds: smaller ones would find dark spots of the Sun, larger
/// ones would be too coarse for the tiles of the renderer.
constexpr int cellsPerShortSide = 16;
constexpr int smallestCellPx = 64;
constexpr int largestCellPx = 256;

constexpr int samplesPerCellSide = 32; // bounds the work, however large the picture
constexpr int blankPerMille = 998;     // of the samples: a stray bright pixel does not hide a block
constexpr int filledPercent = 75;      // of a group's bounding box: three of four cells suffice

/// The solar disk in pixels of the rendered image.
struct Disk
{
    double centreX;
    double centreY;
    double radius;
};

/// The square cells in which the picture is searched, row by row.
struct Grid
{
    explicit Grid(QSize size)
        : picture(size)
        , cellPx(std::clamp(std::min(size.width(), size.height()) / cellsPerShortSide,
                            smallestCellPx, largestCellPx))
        , columns((size.width() + cellPx - 1) / cellPx)
        , rows((size.height() + cellPx - 1) / cellPx)
    {}

    QRect cell(int column, int row) const
    {
        const QRect whole(column * cellPx, row * cellPx, cellPx, cellPx);
        return whole.intersected(QRect(QPoint(0, 0), picture));
    }
    size_t index(int column, int row) const
    {
        return static_cast<size_t>(row) * static_cast<size_t>(columns) +
               static_cast<size_t>(column);
    }
    bool contains(QPoint cell) const { return QRect(0, 0, columns, rows).contains(cell); }

    QSize picture;
    int cellPx;
    int columns;
    int rows;
};

/// A 4-connected group of blank cells, in cells.
struct Component
{
    QRect box;
    int cells = 0;
    bool hasCentre = false;
};

std::optional<Disk> diskOn(QSize size, const QJsonObject &metadata)
{
    const double nativeWidth = metadataNumber(metadata, QStringLiteral("width"));
    const double nativeHeight = metadataNumber(metadata, QStringLiteral("height"));
    const double nativeRadius = metadataNumber(metadata, QStringLiteral("rsun"));
    if (!(nativeWidth > 0.0 && nativeHeight > 0.0 && nativeRadius > 0.0))
        return std::nullopt;

    const double scaleX = size.width() / nativeWidth;
    const double scaleY = size.height() / nativeHeight;
    Disk disk{metadataNumber(metadata, QStringLiteral("refPixelX")) * scaleX,
              metadataNumber(metadata, QStringLiteral("refPixelY")) * scaleY,
              (scaleY + scaleX) * nativeRadius * 0.5};
    if (!(disk.centreX > 0.0 && disk.centreY > 0.0)) {
        disk.centreX = size.width() * 0.5;
        disk.centreY = size.height() * 0.5;
    }
    if (!(disk.radius > smallestRadiusPx) || !std::isfinite(disk.radius))
        return std::nullopt;
    return disk;
}

bool isInside(const Disk &disk, QPoint pixel)
{
    const double dx = pixel.x() - disk.centreX;
    const double dy = pixel.y() - disk.centreY;
    const double limit = searchedRadius * disk.radius;
    return dy * dy + dx * dx <= limit * limit;
}

bool isSearched(const QRect &cell, const Grid &grid, const Disk &disk)
{
    return cell.width() >= grid.cellPx / 2 && cell.height() >= grid.cellPx / 2 &&
           isInside(disk, cell.topLeft()) && isInside(disk, cell.topRight()) &&
           isInside(disk, cell.bottomLeft()) && isInside(disk, cell.bottomRight());
}

/// Transparent or black, ignoring the last bit of each channel.
bool isBlank(QRgb pixel)
{
    return (pixel & 0xfe000000U) == 0 || (pixel & 0x00fefefeU) == 0;
}

/// True when all but a few in a thousand samples of @p cell, which is not empty, are blank.
bool isBlankCell(const QImage &image, const QRect &cell)
{
    const QRgb opaque = image.hasAlphaChannel() ? 0U : 0xff000000U; // RGB32 stores anything there
    const int step = std::max(1, std::min(cell.width(), cell.height()) / samplesPerCellSide);
    int samples = 0;
    int blanks = 0;
    for (int y = cell.top(); y <= cell.bottom(); y += step) {
        const auto *line = reinterpret_cast<const QRgb *>(image.constScanLine(y));
        for (int x = cell.left(); x <= cell.right(); x += step) {
            ++samples;
            blanks += isBlank(line[x] | opaque) ? 1 : 0;
        }
    }
    return blanks * 1000 >= samples * blankPerMille;
}

/// By the cells' indices in @p grid.
std::vector<bool> blankCells(const QImage &image, const Grid &grid, const Disk &disk)
{
    std::vector<bool> blank;
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            const QRect cell = grid.cell(column, row);
            blank.push_back(isSearched(cell, grid, disk) && isBlankCell(image, cell));
        }
    }
    return blank;
}

QPoint centreCell(const Grid &grid, const Disk &disk)
{
    // Bounded before it becomes an integer: the centre may lie far outside a sub-field image.
    const auto x = static_cast<int>(std::clamp(disk.centreX, 0.0, grid.picture.width() - 1.0));
    const auto y = static_cast<int>(std::clamp(disk.centreY, 0.0, grid.picture.height() - 1.0));
    return {x / grid.cellPx, y / grid.cellPx};
}

/// Collects the component of @p first and clears its cells in @p blank: each is visited once.
Component takeComponent(QPoint first, const Grid &grid, QPoint centre, std::vector<bool> &blank)
{
    Component component;
    std::vector<QPoint> pending{first};
    blank[grid.index(first.x(), first.y())] = false;
    while (!pending.empty()) {
        const QPoint cell = pending.back();
        pending.pop_back();
        ++component.cells;
        component.box |= QRect(cell, QSize(1, 1));
        component.hasCentre = component.hasCentre || cell == centre;
        for (const QPoint step : {QPoint(-1, 0), QPoint(1, 0), QPoint(0, -1), QPoint(0, 1)}) {
            const QPoint next = cell + step;
            if (!grid.contains(next) || !blank[grid.index(next.x(), next.y())])
                continue;
            blank[grid.index(next.x(), next.y())] = false;
            pending.push_back(next);
        }
    }
    return component;
}

/// The renderer leaves squares; a dark region of the Sun is ragged, an occulter covers the centre.
bool looksLikeBlock(const Component &component)
{
    const int boxCells = component.box.width() * component.box.height();
    return !component.hasCentre && component.cells * 100 >= boxCells * filledPercent;
}

std::optional<QRect> firstBlock(const Grid &grid, const Disk &disk, std::vector<bool> blank)
{
    const QPoint centre = centreCell(grid, disk);
    for (int row = 0; row < grid.rows; ++row) {
        for (int column = 0; column < grid.columns; ++column) {
            if (!blank[grid.index(column, row)])
                continue;
            const Component component = takeComponent({column, row}, grid, centre, blank);
            if (looksLikeBlock(component))
                return component.box;
        }
    }
    return std::nullopt;
}

QString warningText(const QRect &cells, const Grid &grid)
{
    const int x = cells.left() * grid.cellPx;
    const int y = cells.top() * grid.cellPx;
    const int width = std::min(cells.width() * grid.cellPx, grid.picture.width() - x);
    const int height = std::min(cells.height() * grid.cellPx, grid.picture.height() - y);
    return QStringLiteral("possible blank renderer block at x=%1 y=%2, approx. %3x%4 px")
        .arg(QString::number(x), QString::number(y), QString::number(width),
             QString::number(height));
}

} // namespace

QString detectBlankRendererBlock(const QImage &image, const QJsonObject &metadata)
{
    if (image.width() < smallestSidePx || image.height() < smallestSidePx)
        return {};
    const std::optional<Disk> disk = diskOn(image.size(), metadata);
    if (!disk)
        return {};
    const Grid grid(image.size());
    const QImage pixels = image.convertToFormat(image.hasAlphaChannel() ? QImage::Format_ARGB32
                                                                        : QImage::Format_RGB32);
    const std::optional<QRect> block = firstBlock(grid, *disk, blankCells(pixels, grid, *disk));
    return block ? warningText(*block, grid) : QString();
}
