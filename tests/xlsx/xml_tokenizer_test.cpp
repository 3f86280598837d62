// The scanner has to be indistinguishable from expat: same events, same faults on the same lines.

#include "qto/hosts/embedded/xlsx/xml_tokenizer.hpp"

#include <gtest/gtest.h>

#include <random>
#include <string>

#include "qto/hosts/embedded/xlsx/xml_entity.hpp"

namespace qto::embedded {
namespace {

/// Writes down what it is told; adjacent texts are one.
class Recorder final : public XmlHandler {
 public:
  void on_start(Space space, std::string_view name, const Attributes& attributes) override {
    log += "\n<" + std::to_string(static_cast<int>(space)) + ":" + std::string(name);
    for (const char* const* entry = attributes.list(); *entry; entry += 2)
      log += std::string(" ") + entry[0] + "=[" + entry[1] + "]";
    log += ">";
  }
  void on_end(Space, std::string_view name) override { log += "\n</" + std::string(name) + ">"; }
  void on_text(std::string_view text) override {
    if (log.ends_with('>')) log += '\n';
    for (const char c : text) log += c == '>' ? std::string("&gt;") : std::string(1, c);
  }
  std::string log;
};

std::string read(const std::string& document, XmlTokenizer::Way way, std::size_t piece) {
  Recorder recorder;
  XmlEvents events(recorder);
  XmlTokenizer tokenizer(events, way);
  try {
    for (std::size_t at = 0; at < document.size(); at += piece)
      tokenizer.feed(std::string_view(document).substr(at, piece));
    tokenizer.finish();
  } catch (const XmlFault& fault) {
    recorder.log +=
        "\nfault: " + std::string(fault.what()) + ", line " + std::to_string(tokenizer.line());
  }
  return recorder.log;
}

std::string by_expat(const std::string& document) {
  return read(document, XmlTokenizer::Way::expat_only, document.size() + 1);
}

std::string scanned(const std::string& document, std::size_t piece) {
  return read(document, XmlTokenizer::Way::scanner_first, piece);
}

const std::string documents[] = {
    "<a/>",
    "<?xml version=\"1.0\" encoding=\"UTF-8\" standalone=\"yes\"?>\r\n<a b=\"1\"><c/></a>\n",
    "<?xml version='1.0'?><a\nb='1'\n c = '2'>\nx\n<b>\n</b></a>",
    "<?xml version='1.0' encoding='ISO-8859-1'?><a>\xE4</a>",
    "<?xml version='1.1'?><a/>",
    "<?xml version='1.0' standalone='maybe'?><a/>",
    " <?xml version='1.0'?><a/>",
    "<?xml version='1.0'?><?xml version='1.0'?><a/>",
    "\xEF\xBB\xBF<a>\xE2\x82\xAC</a>",
    "\xFF\xFE<\0a\0/\0>\0",
    "<a>&lt;&gt;&amp;&quot;&apos;&#65;&#x20AC;&#x1F600;</a>",
    "<a b='&lt;&#10;&#x9;&quot;' c=\"'\"/>",
    "<a>&unknown;</a>",
    "<a>&#0;</a>",
    "<a>&#xD800;</a>",
    "<a>&#xFFFE;</a>",
    "<a>& </a>",
    "<a b='a&b'/>",
    "<a b='<'/>",
    "<a b='1' b='2'/>",
    "<a b='1'c='2'/>",
    "<a b=1/>",
    "<a b/>",
    "<a b='x\ty\nz'/>",
    "<a>x\r\ny\rz</a>",
    "<a>x]]>y</a>",
    "<a>x] ]>[1]y</a>",
    "<a><![CDATA[<&]]>x</a>",
    "<a><!-- comment -- --></a>",
    "<a><!-- c\nd --><b>\n<x></b></a>",
    "<a><?pi data?><b/></a>",
    "<a>\x01</a>",
    "<a>\xC3\x28</a>",
    "<a>\xED\xA0\x80</a>",
    "<a>\xEF\xBF\xBF</a>",
    "<a b='\xC3\xA4\xF0\x9F\x98\x80'>\xC3\xA4</a>",
    "<\xC3\xA4/>",
    "<a></b>",
    "<a><b></a></b>",
    "<a>",
    "<a><b/>text",
    "<a",
    "<a b='",
    "</a>",
    "<a/><b/>",
    "<a/>\n text",
    "<a/>\n<!-- end -->\n",
    "<a/>\n<!-- end",
    "text<a/>",
    "",
    "\n",
    "<",
    "<!DOCTYPE a [<!ENTITY e 'x'>]><a>&e;</a>",
    "<a>\n<!DOCTYPE b></a>",
    "<x:a xmlns:x='http://schemas.openxmlformats.org/spreadsheetml/2006/main'><x:b/></x:a>",
    "<a xmlns='http://schemas.openxmlformats.org/spreadsheetml/2006/main'>\n<b xmlns=''>\n"
    "<!-- x --><c/></b><d/></a>",
    "<a b='1' c='2' d='3' e='4' f='5' g='6' h='7' i='8' j='9' k='1' l='1' m='1' n='1' o='1' p='1' "
    "q='1' r='1' s='1'/>",
    "<row r=\"1\"><c r=\"A1\" t=\"s\"><v>1</v></c>\n<c r=\"B1\"><f>A1&amp;\"x\"</f></c></row>",
};

TEST(XmlTokenizer, AgreesWithExpatHoweverThePartIsCut) {
  for (const std::string& document : documents)
    for (const std::size_t piece : {1, 2, 3, 5, 16, 1000})
      EXPECT_EQ(scanned(document, piece), by_expat(document)) << document << " by " << piece;
}

/// Which fault expat names may depend on where the bytes were cut; where it is does not.
std::string without_reason(std::string log) {
  const std::size_t reason = log.find("fault: ");
  if (reason != std::string::npos) log.erase(reason + 7, log.rfind(',') - reason - 7);
  return log;
}

TEST(XmlTokenizer, AgreesWithExpatOnDamagedDocuments) {
  std::minstd_rand random(1);
  const std::string marks = "<>/&;'\"= \n\r\t]![-?x#a:\x01\x80\xC3\xFF";
  for (int round = 0; round < 20'000; ++round) {
    std::string document = documents[random() % std::size(documents)];
    for (unsigned edits = 1 + random() % 3; edits > 0 && !document.empty(); --edits) {
      const std::size_t at = random() % document.size();
      const char mark = marks[random() % marks.size()];
      switch (random() % 3) {
        case 0:
          document[at] = mark;
          break;
        case 1:
          document.insert(at, 1, mark);
          break;
        default:
          document.erase(at, 1 + random() % 3);
      }
    }
    const std::size_t piece = 1 + random() % 40;
    ASSERT_EQ(without_reason(scanned(document, piece)), without_reason(by_expat(document)))
        << document << " by " << piece;
  }
}

TEST(XmlTokenizer, LongTokensArePassedOn) {
  const std::string text(300'000, 'x');
  for (const std::string& document :
       {"<a>" + text + "</a>", "<a b='" + text + "'>y</a>", "<a><!--" + text + "--></a>"})
    EXPECT_EQ(scanned(document, 10'000), by_expat(document));
}

TEST(XmlEntities, PlainPrologs) {
  struct Case {
    const char* text;
    std::size_t length;
  };
  constexpr auto npos = std::string_view::npos;
  for (const Case& c : {Case{"<a>", 0},
                        {"<?xml version=\"1.0\"?>\r\n<a>", 23},
                        {"\xEF\xBB\xBF<a>", 3},
                        {"<?xml version='1.0' encoding='utf-8' standalone='no' ?><a>", 55},
                        {"<?xml version='1.0' encoding='UTF-16'?>", npos},
                        {"<?xml version='1.0'", npos},
                        {"<?xml?>", npos},
                        {"<?xml-stylesheet href='x'?>", npos}})
    EXPECT_EQ(plain_prolog_length(c.text), c.length) << c.text;
}

}  // namespace
}  // namespace qto::embedded
