// manifest.csv, on its own and larger than in a whole session.

#include "fuzz/scratch.h"
#include "output/manifestreader.h"

extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv)
{
    Scratch::begin(argc, argv);
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QByteArray content = Scratch::bytes(data, size);
    QString errorText;
    const auto frames =
        ManifestReader::read(Scratch::write(QStringLiteral("manifest.csv"), content), &errorText);
    Scratch::require(frames.has_value() == errorText.isEmpty(), "frames or a reason");
    Scratch::require(frames.has_value() == !content.isEmpty(), "only an empty file is refused");
    if (!frames)
        return 0;
    int count = 0;
    for (const QVector<ManifestFrame> &list : frames->bySource)
        count += list.size();
    Scratch::require(count <= content.count('\n') + content.count('\r') + 1, "a frame has a line");
    return 0;
}
