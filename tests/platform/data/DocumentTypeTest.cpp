#include "platform/data/DocumentType.h"

#include <QStringList>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

namespace
{

TEST(DocumentType, IsFoundBeforeAndBehindTheRoot)
{
    for (const QString &before :
         {QStringLiteral(""), QStringLiteral(" \t\r\n"), QStringLiteral("<?xml version=\"1.0\"?>"),
          QStringLiteral("<!---->"), QStringLiteral("<!-- a -->"), QStringLiteral("<?a ?b?>"), QStringLiteral("<?a?>"),
          QStringLiteral("<?xml version='1.0'?>\n<!-- <!DOCTYPE a> ?> -->\n<?b <!DOCTYPE a> -->?> "),
          QStringLiteral("<a>]]></a> "), QStringLiteral("<a><![CDATA[<!DOCTYPE a>]]></a>")}) {
        for (const QString &rest : {QStringLiteral("<!DOCTYPE a><a/>"), QStringLiteral("<!DOCTYPE a><!DOCTYPE b>"),
                                    QStringLiteral("<!DOCTYPE")}) {
            EXPECT_EQ(lengthBeforeDocumentType(before + rest), before.size()) << (before + rest).toStdString();
        }
        for (const QString &rest : {QStringLiteral(""), QStringLiteral("<a/>"), QStringLiteral("<"),
                                    QStringLiteral("<!-- <!DOCTYPE a>"), QStringLiteral("<!--><!DOCTYPE a>"),
                                    QStringLiteral("<?><!DOCTYPE a>"), QStringLiteral("<![CDATA[<!DOCTYPE a>")}) {
            EXPECT_EQ(lengthBeforeDocumentType(before + rest), (before + rest).size()) << (before + rest).toStdString();
        }
    }
}

TEST(DocumentType, IsPassedOverWhenItDeclaresNothing)
{
    const auto before = [](const char *xml) { return lengthBeforeDeclaringDocumentType(QString::fromLatin1(xml)); };
    for (const char *xml : {"<!DOCTYPE a><a/>", "<!DOCTYPE a SYSTEM 'b'><a/>", "<!DOCTYPE a SYSTEM \"[>'<\"><a/>",
                            "<!-- --><!DOCTYPE a PUBLIC '\"' \"'\"><!-- <!DOCTYPE b [ --><a/>", "<a/>", ""}) {
        EXPECT_EQ(before(xml), qsizetype(qstrlen(xml))) << xml;
    }
    for (const char *xml : {"<!DOCTYPE a []><a/>", "<!DOCTYPE a SYSTEM '>' [<!ENTITY b 'c'>]><a/>", "<!DOCTYPE a",
                            "<!DOCTYPE a SYSTEM '><a/>", "<!DOCTYPE a <b>>"}) {
        EXPECT_EQ(before(xml), 0) << xml;
    }
    EXPECT_EQ(before("<!DOCTYPE a><a/><!DOCTYPE b>"), 16) << "the second";
}

TEST(DocumentType, IsFoundWhereverTheParserTakesOne)
{
    const QStringList pieces = {QStringLiteral(" "),
                                QStringLiteral("\u00A0"),
                                QStringLiteral("\uFEFF"),
                                QStringLiteral("x"),
                                QStringLiteral("<a/>"),
                                QStringLiteral("<a b='<!--'/>"),
                                QStringLiteral("<a><![CDATA[</a>]]></a>"),
                                QStringLiteral("<!---->"),
                                QStringLiteral("<!-->"),
                                QStringLiteral("<!-- -- -->"),
                                QStringLiteral("<![CDATA[]]>"),
                                QStringLiteral("<?a?>"),
                                QStringLiteral("<?>"),
                                QStringLiteral("<?a '?>'?>"),
                                QStringLiteral("<?xml version='1.0'?>"),
                                QStringLiteral("<?xml version='1.0' encoding='?>'?>"),
                                QStringLiteral("&amp;")};
    int reached = 0;
    for (const QString &first : pieces) {
        for (const QString &second : pieces) {
            const QString before = first + second;
            QXmlStreamReader reader(before + QStringLiteral("<!DOCTYPE a><a/>"));
            while (!reader.atEnd() && reader.readNext() != QXmlStreamReader::DTD) {
            }
            if (reader.isDTD()) {
                ++reached;
                EXPECT_EQ(lengthBeforeDocumentType(before + QStringLiteral("<!DOCTYPE a><a/>")), before.size())
                    << before.toStdString();
            }
        }
    }
    EXPECT_GT(reached, 10);
}

} // namespace
