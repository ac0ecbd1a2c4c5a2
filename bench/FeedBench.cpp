#include "bench/Ratios.h"
#include "notify/feed/FeedParser.h"
#include "notify/record/KivNotification.h"

#include <QGuiApplication>
#include <QXmlStreamReader>

#include <benchmark/benchmark.h>

#include <cstdlib>
#include <libxml/parser.h>

namespace
{

constexpr int messages = 10'000;

/// A feed of messages with HTML of about 600 bytes each. With "auto" every text would be measured, which is text
/// layout and not reading.
QByteArray feedWithHeights(const char *height)
{
    QByteArray document = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<supportMessages>\n";
    for (int i = 0; i < messages; ++i) {
        const QByteArray number = QByteArray::number(i);
        QByteArray html = "<b>Version 3." + number + " is out</b>\n";
        while (html.size() < 600) {
            html += "<p>Read what is <a href=\"http://example.com/news/" + number + "\">new</a> in it.</p>\n";
        }
        document += "  <supportMessage>\n    <messageId>" + number +
                    "</messageId>\n    <messageType>update</messageType>\n    <messageLevel>any</messageLevel>\n"
                    "    <messageRepeat>1</messageRepeat>\n    <messagePriority>high</messagePriority>\n"
                    "    <productCode>kivunets</productCode>\n    <licenseType>any</licenseType>\n"
                    "    <minVersion>3.1</minVersion>\n    <maxVersion>any</maxVersion>\n"
                    "    <buildDate>2011-05-20</buildDate>\n    <systemCode>osx</systemCode>\n"
                    "    <minSysVer>any</minSysVer>\n    <maxSysVer>any</maxSysVer>\n"
                    "    <minDate>05/20/2011</minDate>\n    <maxDate>any</maxDate>\n"
                    "    <contentEncoding>base64</contentEncoding>\n    <contentType>text/html</contentType>\n"
                    "    <contentWidth>320</contentWidth>\n    <contentHeight>" +
                    height + "</contentHeight>\n    <contentData>" + html.toBase64() +
                    "</contentData>\n  </supportMessage>\n";
    }
    return document + "</supportMessages>\n";
}

const QByteArray &feed()
{
    static const QByteArray document = feedWithHeights("120");
    return document;
}

void parse(benchmark::State &state, const QByteArray &document)
{
    for (auto _ : state) {
        int records = 0;
        qsizetype characters = 0;
        FeedParser parser([&](const std::shared_ptr<KivNotification> &record) {
            ++records;
            characters += record->messageText().size();
        });
        if (parser.parse(document) != FeedParser::Outcome::EndOfDocument || records != messages) {
            state.SkipWithError("parses wrongly");
            break;
        }
        benchmark::DoNotOptimize(characters);
    }
    state.SetBytesProcessed(state.iterations() * document.size());
}

void feedParser(benchmark::State &state)
{
    parse(state, feed());
}

void feedParserMeasuring(benchmark::State &state)
{
    static const QByteArray document = feedWithHeights("auto");
    parse(state, document);
}

void bareWalk(benchmark::State &state)
{
    for (auto _ : state) {
        QXmlStreamReader reader(feed());
        int elements = 0;
        while (!reader.atEnd()) {
            elements += reader.readNext() == QXmlStreamReader::StartElement ? 1 : 0;
        }
        if (reader.hasError()) {
            state.SkipWithError("walks wrongly");
            break;
        }
        benchmark::DoNotOptimize(elements);
    }
    state.SetBytesProcessed(state.iterations() * feed().size());
}

void libxml2Sax(benchmark::State &state)
{
    struct Seen {
        int elements = 0;
        std::size_t characters = 0;
    };
    xmlSAXHandler handler{};
    handler.startElement = [](void *seen, const xmlChar *, const xmlChar **) { ++static_cast<Seen *>(seen)->elements; };
    handler.characters = [](void *seen, const xmlChar *, int length) {
        static_cast<Seen *>(seen)->characters += static_cast<std::size_t>(length);
    };
    for (auto _ : state) {
        Seen seen;
        if (xmlSAXUserParseMemory(&handler, &seen, feed().constData(), static_cast<int>(feed().size())) != 0 ||
            seen.elements != messages * 21 + 1) {
            state.SkipWithError("parses wrongly");
            break;
        }
        benchmark::DoNotOptimize(seen);
    }
    state.SetBytesProcessed(state.iterations() * feed().size());
}

BENCHMARK(feedParser)->Unit(benchmark::kMillisecond);
BENCHMARK(feedParserMeasuring)->Unit(benchmark::kMillisecond);
BENCHMARK(bareWalk)->Unit(benchmark::kMillisecond);
BENCHMARK(libxml2Sax)->Unit(benchmark::kMillisecond);

} // namespace

int main(int argc, char **argv)
{
    qputenv("QT_QPA_PLATFORM", "offscreen");
    const QGuiApplication application(argc, argv);
    const Ratio ratios[] = {
        {"feedParser", "bareWalk", 2}, {"feedParser", "libxml2Sax"}, {"feedParserMeasuring", "feedParser"}};
    return runAndCompare(argc, argv, ratios);
}
