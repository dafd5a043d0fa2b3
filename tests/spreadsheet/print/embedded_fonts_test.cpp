#include "spreadsheet/print/document_pages.h"
#include "spreadsheet/print/PageText.h"
#include "spreadsheet/print/pdf.h"
#include "spreadsheet/workbook/Workbook.h"
#include "tests/spreadsheet/print/pdf_pictures.h"

#include <QFile>
#include <QFontDatabase>
#include <QPdfWriter>
#include <QRawFont>

namespace spreadsheet {
namespace {

struct EmbeddedFonts : testing::Test {
    QString path(const QString& name) const { return folder.filePath(name); }
    void show(const std::string& family, bool bold, bool italic)
    {
        for (int row = 1; row <= 40; ++row)
            sheet.setText({1, row}, "Total 1,234.50 Hamburg & Qx " + std::to_string(row));
        sheet.restyle({1, 1, 1, 40}, [&](CellStyle& style) {
            style.font.family = Text(family);
            style.font.bold = bold;
            style.font.italic = italic;
        });
        sheet.changeSettings([](SheetSettings& settings) { settings.columns.sizes[1] = 5000; });
    }
    /// A second way: the toolkit's own writer.
    void writeBothWays() const
    {
        const PrintDocument document;
        QFile ours(path("ours.pdf"));
        ASSERT_TRUE(ours.open(QIODevice::WriteOnly));
        ours.write(pdfOf(workbook, document).bytes);
        QPdfWriter theirs(path("theirs.pdf"));
        theirs.setResolution(1440);
        PageText text;
        ASSERT_TRUE(drawPages(theirs, layOut(workbook, document), document, text));
    }

    QTemporaryDir folder;
    Workbook workbook;
    Sheet& sheet = workbook.sheet(1);
};

/// Letters that the document has only slanted are those of the file all the same, and slanted once; so are
/// curves of either degree.
TEST_F(EmbeddedFonts, LettersAreThoseOfTheFile)
{
    constexpr struct {
        const char* family;
        bool bold, italic;
    } cases[] = {{"WenQuanYi Zen Hei", false, false},
                 {"WenQuanYi Zen Hei", false, true},
                 {"Noto Serif CJK SC", false, true},
                 {"Noto Serif CJK SC", true, true},
                 {"DejaVu Sans", true, true}};
    for (const auto& [family, bold, italic] : cases) {
        SCOPED_TRACE(std::string(family) + (bold ? " bold" : "") + (italic ? " italic" : ""));
        show(family, bold, italic);
        writeBothWays();
        EXPECT_TRUE(run("pdffonts", {path("ours.pdf")}).second.contains("Type 0C")) << "not by our own road";
        expectAlike(picturesOf(folder, "ours.pdf"), picturesOf(folder, "theirs.pdf"), 500);
    }
}

/// The font file under another name, with another word on what it may be used for.
QByteArray restrictedFont(const QString& file)
{
    QFile original(file);
    EXPECT_TRUE(original.open(QIODevice::ReadOnly));
    QByteArray font = original.readAll();
    const auto wide = [](const char* text) {
        QByteArray units;
        for (; *text; ++text)
            units += QByteArray(1, '\0') + *text;
        return units;
    };
    font.replace(wide("DejaVu Sans"), wide("Forbidden S")).replace("DejaVu Sans", "Forbidden S");
    const auto offset =
        static_cast<qsizetype>(font.mid(font.indexOf("OS/2") + 8, 4).toHex().toLongLong(nullptr, 16));
    font[offset + 8] = '\0';
    font[offset + 9] = '\2'; // no embedding
    return font;
}

TEST_F(EmbeddedFonts, FontsThatMayNotBeEmbeddedAreDrawn)
{
    const int added = QFontDatabase::addApplicationFontFromData(
        restrictedFont("/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"));
    ASSERT_EQ(QFontDatabase::applicationFontFamilies(added), QStringList{"Forbidden S"});
    show("Forbidden S", false, false);
    writeBothWays();
    EXPECT_FALSE(run("pdffonts", {path("ours.pdf")}).second.contains("Forbidden"));
    expectAlike(picturesOf(folder, "ours.pdf"), picturesOf(folder, "theirs.pdf"), 500);
    QFontDatabase::removeApplicationFont(added);
}

} // namespace
} // namespace spreadsheet
