// A film that may be cut off, of another kind, or none at all.

#include "fuzz/scratch.h"
#include "output/filmfile.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, std::size_t size)
{
    const QString file = Scratch::write(QStringLiteral("film.mp4"), Scratch::bytes(data, size));
    const auto content = FilmFile::read(file);
    if (!content)
        return 0;
    Scratch::require(content->pictures >= 0, "no film has less than no picture");
    Scratch::require(!content->isCutOff || content->pictures == 0, "a cut-off film has no tables");
    Scratch::require(FilmFile::isCutOff(file) == content->isCutOff, "one answer to one question");
    Scratch::require(FilmFile::flaw(file, content->pictures).isEmpty() == !content->isCutOff,
                     "a film with all its pictures has no flaw");
    return 0;
}
