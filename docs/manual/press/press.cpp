// SPDX-License-Identifier: GPL-3.0-or-later
#include "docs/manual/press/SourceHash.h"

#include "app/Constants.h"
#include "fonts/ApplicationFonts.h"

#include <QtCore/QRegularExpression>
#include <QtCore/QUrl>
#include <QtGui/QAbstractTextDocumentLayout>
#include <QtGui/QFontDatabase>
#include <QtGui/QFontInfo>
#include <QtGui/QGuiApplication>
#include <QtGui/QPainter>
#include <QtGui/QPdfWriter>
#include <QtGui/QTextBlock>
#include <QtGui/QTextCursor>
#include <QtGui/QTextDocument>
#include <QtGui/QTextTable>

#include <cstdio>
#include <memory>

// manual-press SOURCE PDF: sets docs/manual as a book of A4 pages. The texts are HTML without head
// or frame; chapters (h1) are numbered here, and the title page, the contents, the running heads
// and the page numbers are made here too. A heading stays with what it heads, a picture with its
// caption, and a table that fits a page is not parted, as long as that costs less than half a page.
// Ends with 1 if something is missing: a font, a picture, the source.

namespace
{

constexpr int Resolution = 1200;
constexpr qreal PointsPerInch = 72;
// A pixel of the source.
constexpr qreal PixelsPerInch = 96;
constexpr qreal MillimetresPerInch = 25.4;

constexpr qreal SideMarginMm = 22;
constexpr qreal TopMarginMm = 26;
constexpr qreal BottomMarginMm = 24;

constexpr int MaximumRounds = 200;
// A chapter begins a new page if at least this much of the last one is filled.
constexpr qreal ChapterFilled = 0.42;
constexpr qreal ChapterGapPx = 44;
// A paragraph of at most so many lines is not parted.
constexpr int WholeLines = 4;
// A page is broken early only if at least this much of it is filled.
constexpr qreal LeastFilled = 0.4;

constexpr QLatin1String TextFamily("Nimbus Sans");
constexpr QLatin1String CodeFamily("Nimbus Mono PS");

// The colours of the program's window.
const QColor Ink(0x1d, 0x1d, 0x1d);
const QColor Faint(0x77, 0x77, 0x77);
const QColor Rule(0xc4, 0xc4, 0xc4);
const QColor Strip(0x37, 0x37, 0x37);
const QColor Display(0xbf, 0xcc, 0xbf);
const QColor Note(0xe9, 0xee, 0xe8);
const QColor Accent(0x9a, 0x34, 0x12);

qreal px(qreal pixels)
{
    return pixels * Resolution / PixelsPerInch;
}

qreal mm(qreal millimetres)
{
    return millimetres * Resolution / MillimetresPerInch;
}

struct Heading
{
    QString text;
    int level = 1;
    int page = 0; // of the document, from 0
    bool atTop = false;
};

QFont fontOf(const QString &family, qreal points, bool bold = false)
{
    QFont font(family);
    font.setPointSizeF(points);
    font.setBold(bold);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

QString plain(QString html)
{
    static const QRegularExpression tags(QStringLiteral("<[^>]*>"));
    html.remove(tags);
    html.replace(QLatin1String("&amp;"), QLatin1String("&"));
    return html.simplified();
}

class Press
{
public:
    Press(const QString &source, QPdfWriter *writer)
        : m_source(source)
        , m_writer(writer)
        , m_page(mm(0), mm(0), writer->width(), writer->height())
        , m_text(mm(SideMarginMm), mm(TopMarginMm), writer->width() - 2 * mm(SideMarginMm),
                 writer->height() - mm(TopMarginMm) - mm(BottomMarginMm))
    {
    }

    bool read(QString *missing)
    {
        QFile html(m_source.filePath(QStringLiteral("manual.html")));
        QFile css(m_source.filePath(QStringLiteral("manual.css")));
        if (!html.open(QIODevice::ReadOnly) || !css.open(QIODevice::ReadOnly)) {
            *missing = m_source.path();
            return false;
        }
        m_html = numbered(QString::fromUtf8(html.readAll()));
        m_css = QString::fromUtf8(css.readAll());
        static const QRegularExpression pictures(QStringLiteral("<img src=\"([^\"]+)\""));
        for (auto found = pictures.globalMatch(m_html); found.hasNext();) {
            const QString name = found.next().captured(1);
            if (!QFile::exists(m_source.filePath(name))) {
                *missing = name;
                return false;
            }
        }
        return true;
    }

    void print()
    {
        // The contents are as long as they are, whatever the numbers in them; so the second round
        // finds the pages of the first.
        set(contents({}));
        const QList<Heading> first = headings();
        set(contents(first));
        m_headings = headings();

        QPainter painter(m_writer);
        // The pictures are made of single pixels, which JPEG would smear.
        painter.setRenderHint(QPainter::LosslessImageRendering);
        titlePage(&painter);
        for (int page = 0; page < m_document->pageCount(); ++page) {
            m_writer->newPage();
            runningHead(&painter, page);
            painter.save();
            painter.translate(m_text.topLeft() - QPointF(0, page * m_text.height()));
            QAbstractTextDocumentLayout::PaintContext context;
            context.clip = QRectF(0, page * m_text.height(), m_text.width(), m_text.height());
            context.palette.setColor(QPalette::Text, Ink);
            painter.setClipRect(context.clip);
            m_document->documentLayout()->draw(&painter, context);
            painter.restore();
        }
    }

    int pages() const { return m_document->pageCount() + 1; }

private:
    static QString numbered(QString html)
    {
        static const QRegularExpression chapter(QStringLiteral("<h1>"));
        int number = 0;
        qsizetype at = 0;
        while ((at = html.indexOf(chapter, at)) >= 0) {
            const QString head = QStringLiteral("<h1>%1&nbsp;&nbsp;").arg(++number);
            html.replace(at, 4, head);
            at += head.size();
        }
        return html;
    }

    QString contents(const QList<Heading> &known) const
    {
        static const QRegularExpression heads(QStringLiteral("<h([12])>(.*?)</h[12]>"));
        QString rows;
        qsizetype index = 0;
        for (auto found = heads.globalMatch(m_html); found.hasNext(); ++index) {
            const QRegularExpressionMatch match = found.next();
            // The title page is the first, and not numbered.
            const QString page =
                index < known.size() ? QString::number(known.at(index).page + 2) : QString();
            const bool chapter = match.captured(1) == QLatin1String("1");
            rows += QStringLiteral("<tr><td class=\"toc%1\">%2%3</td>"
                                   "<td class=\"toc%1\" align=\"right\" width=\"10%\">%4</td></tr>")
                        .arg(match.captured(1),
                             chapter ? QString() : QStringLiteral("&nbsp;&nbsp;&nbsp;&nbsp;&nbsp;"),
                             match.captured(2), page);
        }
        return QStringLiteral("<h1>Contents</h1><table class=\"toc\">%1</table>").arg(rows);
    }

    // Sets the document, and breaks pages until nothing is parted that should not be.
    void set(const QString &contentsHtml)
    {
        m_document = std::make_unique<QTextDocument>();
        m_document->setDocumentMargin(0);
        m_document->setDefaultFont(fontOf(TextFamily, 9.5));
        m_document->setDefaultStyleSheet(m_css);
        m_document->setBaseUrl(QUrl::fromLocalFile(m_source.path() + QLatin1Char('/')));
        m_document->documentLayout()->setPaintDevice(m_writer);
        m_document->setHtml(QStringLiteral("<body>%1%2</body>").arg(contentsHtml, m_html));
        m_document->setPageSize(m_text.size());
        dressTables();
        m_placedChapters = 1; // the contents
        relayout();
        for (int round = 0; round < MaximumRounds && mendOneBreak(); ++round) {
            relayout();
        }
    }

    // A change of a format lays out what it touches, and may leave blocks behind it without lines.
    void relayout() { m_document->markContentsDirty(0, m_document->characterCount()); }

    void dressTables()
    {
        for (QTextFrame *frame : m_document->rootFrame()->childFrames()) {
            auto *table = qobject_cast<QTextTable *>(frame);
            if (table == nullptr) {
                continue;
            }
            const bool isContents = table == m_document->rootFrame()->childFrames().constFirst();
            const bool isNote = table->rows() * table->columns() == 1;
            QTextTableFormat format = table->format();
            format.setBorder(0);
            format.setBorderCollapse(true);
            format.setCellSpacing(0);
            format.setCellPadding(isContents ? 2.4 : 4.5);
            format.setWidth(QTextLength(QTextLength::PercentageLength, 100));
            format.setTopMargin(isContents ? 0 : 4);
            format.setBottomMargin(12);
            if (isNote) {
                format.setCellPadding(8);
                table->setFormat(format);
                QTextTableCell cell = table->cellAt(0, 0);
                QTextTableCellFormat cellFormat = cell.format().toTableCellFormat();
                cellFormat.setBackground(Note);
                cellFormat.setLeftBorder(3);
                cellFormat.setLeftBorderStyle(QTextFrameFormat::BorderStyle_Solid);
                cellFormat.setLeftBorderBrush(Accent);
                cell.setFormat(cellFormat);
                continue;
            }
            if (!isContents) {
                format.setHeaderRowCount(1);
            }
            table->setFormat(format);
            for (int row = 0; row < table->rows() && !isContents; ++row) {
                for (int column = 0; column < table->columns(); ++column) {
                    QTextTableCell cell = table->cellAt(row, column);
                    QTextTableCellFormat cellFormat = cell.format().toTableCellFormat();
                    cellFormat.setBottomBorder(0.6);
                    cellFormat.setBottomBorderStyle(QTextFrameFormat::BorderStyle_Solid);
                    cellFormat.setBottomBorderBrush(Rule);
                    cell.setFormat(cellFormat);
                }
            }
        }
    }

    int pageAt(qreal y) const { return static_cast<int>(y / m_text.height()); }

    QRectF rectOf(const QTextBlock &block) const
    {
        return m_document->documentLayout()->blockBoundingRect(block);
    }

    static QTextTable *tableOf(const QTextBlock &block)
    {
        return qobject_cast<QTextTable *>(QTextCursor(block).currentFrame());
    }

    void breakBefore(const QTextBlock &block)
    {
        QTextCursor cursor(block);
        QTextBlockFormat format = block.blockFormat();
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        cursor.setBlockFormat(format);
    }

    static bool breaksBefore(const QTextBlock &block)
    {
        return (block.blockFormat().pageBreakPolicy() & QTextFormat::PageBreak_AlwaysBefore) != 0;
    }

    // One, or several in a row.
    static bool isPicture(const QTextBlock &block)
    {
        const QString text = block.text().trimmed();
        return text.startsWith(QChar::ObjectReplacementCharacter) &&
               text.endsWith(QChar::ObjectReplacementCharacter);
    }

    // What must not be the last on a page.
    static bool clings(const QTextBlock &block)
    {
        return block.blockFormat().headingLevel() > 0 || isPicture(block);
    }

    // The first of the blocks that cling to this one.
    static QTextBlock lead(QTextBlock block)
    {
        while (block.previous().isValid() && tableOf(block.previous()) == nullptr &&
               clings(block.previous()) && !breaksBefore(block)) {
            block = block.previous();
        }
        return block;
    }

    // Breaks before the block and what clings to it, if its page is filled enough by then.
    bool pushed(const QTextBlock &block)
    {
        const QTextBlock first = lead(block);
        const qreal top = rectOf(first).top();
        const qreal filled = top - pageAt(top) * m_text.height();
        if (breaksBefore(first) || filled < LeastFilled * m_text.height()) {
            return false;
        }
        breakBefore(first);
        return true;
    }

    // Also before a table: the paragraph in front of it comes along if it is a heading, and a table
    // without one is broken itself.
    bool pushedTable(QTextTable *table)
    {
        const QTextBlock first = table->firstCursorPosition().block();
        const QTextBlock before = first.previous();
        const qreal top = m_document->documentLayout()->frameBoundingRect(table).top();
        if (before.isValid() && tableOf(before) == nullptr && clings(before)) {
            return pushed(before);
        }
        QTextTableFormat format = table->format();
        const qreal filled = top - pageAt(top) * m_text.height();
        if ((format.pageBreakPolicy() & QTextFormat::PageBreak_AlwaysBefore) != 0 ||
            filled < LeastFilled * m_text.height()) {
            return false;
        }
        format.setPageBreakPolicy(QTextFormat::PageBreak_AlwaysBefore);
        table->setFormat(format);
        return true;
    }

    void placeChapter(const QTextBlock &block)
    {
        const qreal top = rectOf(block).top();
        const bool contentsAbove = m_placedChapters == 1;
        ++m_placedChapters;
        if (contentsAbove ||
            top - pageAt(top) * m_text.height() > ChapterFilled * m_text.height()) {
            breakBefore(block);
            return;
        }
        QTextBlockFormat format = block.blockFormat();
        format.setTopMargin(ChapterGapPx);
        QTextCursor(block).setBlockFormat(format);
    }

    // Looks from the front for the first thing that is parted and can be helped, or the first
    // chapter that has no place yet.
    bool mendOneBreak()
    {
        QTextTable *last = nullptr;
        int chapters = 0;
        for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
            if (QTextTable *table = tableOf(block)) {
                if (table == last) {
                    continue;
                }
                last = table;
                const QRectF rect = m_document->documentLayout()->frameBoundingRect(table);
                const bool parted = pageAt(rect.top()) != pageAt(rect.bottom() - px(8));
                if (parted && rect.height() < m_text.height() && pushedTable(table)) {
                    return true;
                }
                continue;
            }
            if (block.blockFormat().headingLevel() == 1 && ++chapters > m_placedChapters) {
                placeChapter(block);
                return true;
            }
            const QRectF own = rectOf(block);
            if (block.layout()->lineCount() <= WholeLines &&
                pageAt(own.top()) != pageAt(own.bottom() - px(10)) && pushed(block)) {
                return true;
            }
            const QTextBlock next = block.next();
            if (!clings(block) || !next.isValid()) {
                continue;
            }
            QTextTable *behind = tableOf(next);
            // Two lines of what follows belong to a heading.
            const qreal start =
                behind != nullptr
                    ? m_document->documentLayout()->frameBoundingRect(behind).top() + px(50)
                    : rectOf(next).top() + qMin(rectOf(next).height() - px(2), px(30));
            if (pageAt(rectOf(block).top()) != pageAt(start) && pushed(block)) {
                return true;
            }
        }
        return false;
    }

    QList<Heading> headings() const
    {
        QList<Heading> found;
        for (QTextBlock block = m_document->begin(); block.isValid(); block = block.next()) {
            const int level = block.blockFormat().headingLevel();
            if (level == 1 || level == 2) {
                const qreal top = rectOf(block).top();
                const int page = pageAt(top + px(2));
                found.append({plain(block.text()), level, page,
                              top - page * m_text.height() < px(ChapterGapPx)});
            }
        }
        found.removeFirst(); // the contents themselves
        return found;
    }

    void titlePage(QPainter *painter) const
    {
        painter->fillRect(QRectF(0, 0, m_page.width(), mm(118)), Strip);
        painter->setPen(Qt::white);
        QFont large(FontFamilyQRL8Expanded);
        large.setPixelSize(qRound(px(40)));
        painter->setFont(large);
        painter->drawText(QPointF(m_text.left(), mm(62)), QStringLiteral("TARN/TERN"));
        painter->setPen(Display);
        painter->setFont(fontOf(TextFamily, 24));
        painter->drawText(QPointF(m_text.left(), mm(78)), QStringLiteral("Remote Editor"));
        painter->setPen(QPen(Accent, px(3)));
        painter->drawLine(QPointF(m_text.left(), mm(88)), QPointF(m_text.left() + mm(28), mm(88)));
        painter->setPen(Qt::white);
        painter->setFont(fontOf(TextFamily, 13));
        painter->drawText(QPointF(m_text.left(), mm(100)), QStringLiteral("Manual"));

        const QImage picture(m_source.filePath(QStringLiteral("figures/display.png")));
        const qreal width = m_text.width();
        const QRectF place(m_text.left(), mm(140), width,
                           width * picture.height() / picture.width());
        painter->drawImage(place, picture);

        painter->setPen(Faint);
        painter->setFont(fontOf(TextFamily, 9.5));
        painter->drawText(QPointF(m_text.left(), m_page.height() - mm(24)),
                          QStringLiteral("Twelve knobs, fifty templates, one window."));
    }

    void runningHead(QPainter *painter, int page) const
    {
        // A chapter's first page has its name in large already.
        QString chapter = QStringLiteral("Contents");
        bool opens = page == 0;
        for (const Heading &heading : m_headings) {
            if (heading.level != 1 || heading.page > page) {
                continue;
            }
            if (heading.page < page || heading.atTop) {
                chapter = heading.text;
                opens = heading.page == page;
            }
        }
        painter->setPen(Faint);
        painter->setFont(fontOf(TextFamily, 8.5));
        if (!opens) {
            painter->drawText(QRectF(m_text.left(), mm(13), m_text.width(), mm(6)),
                              Qt::AlignRight | Qt::AlignVCenter, chapter);
        }
        const QRectF foot(m_text.left(), m_page.height() - mm(17), m_text.width(), mm(6));
        painter->drawText(foot, Qt::AlignLeft | Qt::AlignVCenter, EditorName);
        painter->setPen(Ink);
        painter->drawText(foot, Qt::AlignRight | Qt::AlignVCenter, QString::number(page + 2));
        painter->setPen(QPen(Rule, px(0.75)));
        painter->drawLine(foot.topLeft() - QPointF(0, mm(1.5)),
                          foot.topRight() - QPointF(0, mm(1.5)));
    }

    const QDir m_source;
    QPdfWriter *m_writer;
    const QRectF m_page;
    const QRectF m_text;
    QString m_html;
    QString m_css;
    QList<Heading> m_headings;
    int m_placedChapters = 0;
    std::unique_ptr<QTextDocument> m_document;
};

bool complain(const QString &what)
{
    std::fprintf(stderr, "manual-press: %s\n", qPrintable(what));
    return false;
}

bool run(const QString &source, const QString &target)
{
    if (!loadApplicationFonts()) {
        return complain(QStringLiteral("the program's fonts can't be loaded"));
    }
    for (const QString &family : {QString(TextFamily), QString(CodeFamily)}) {
        // A family that several foundries have carries the foundry's name in brackets.
        if (!QFontInfo(fontOf(family, 10)).family().startsWith(family)) {
            return complain(
                QStringLiteral("no font %1 here (package fonts-urw-base35)").arg(family));
        }
    }
    const QByteArray hash = manualSourceHash(source);
    if (hash.isEmpty()) {
        return complain(QStringLiteral("no source in ") + source);
    }
    // Written anew, and in place only when it is whole.
    const QString made = target + QStringLiteral(".new");
    {
        QPdfWriter writer(made);
        writer.setResolution(Resolution);
        writer.setPageSize(QPageSize(QPageSize::A4));
        writer.setPageMargins(QMarginsF(0, 0, 0, 0));
        writer.setTitle(EditorName + QStringLiteral(" Manual"));
        writer.setCreator(EditorName + QStringLiteral(", ") + manualHashMark(hash));
        Press press(source, &writer);
        QString missing;
        if (!press.read(&missing)) {
            return complain(QStringLiteral("can't read ") + missing);
        }
        press.print();
        std::printf("%s: %d pages\n", qPrintable(target), press.pages());
    }
    QFile::remove(target);
    return QFile::rename(made, target) || complain(QStringLiteral("can't write ") + target);
}

} // namespace

int main(int argc, char **argv)
{
    QGuiApplication application(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.size() != 3) {
        std::fputs("usage: manual-press SOURCE PDF\n", stderr);
        return 2;
    }
    return run(arguments.at(1), arguments.at(2)) ? 0 : 1;
}
