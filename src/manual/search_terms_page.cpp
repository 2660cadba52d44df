#include "manual/search_terms_page.h"

#include "manual/roff.h"
#include "platform/model/search/directives.h"

namespace tavi::manual {
namespace {

void addTerms(Roff& page) {
  page.section("TERMS");
  page.paragraph(
      "A query is a sequence of terms, phrases, tags and directives with white space between them. "
      "It finds the notes that fulfil all of them.");
  page.item(Roff::italic("word"),
            "Notes with these characters in the title or the text, inside words too. Letter case "
            "does not count, accents do.");
  page.item(Roff::bold("\"") + Roff::italic("words") + Roff::bold("\""),
            "The same of a text with blanks, or one that would mean something else without quotes. "
            "\\\" and \\\\ stand for the character.");
  page.item(Roff::bold("-") + Roff::italic("condition"), "Notes that do not fulfil it.");
  page.item(Roff::italic("condition") + Roff::bold(" or ") + Roff::italic("condition"),
            "Notes that fulfil one of its two neighbours.");
}

void addTags(Roff& page) {
  page.section("TAGS");
  page.item(Roff::bold("#") + Roff::italic("tag"), "Notes with the tag or one below it.");
  page.item(Roff::bold("!#") + Roff::italic("tag"), "Notes with the tag itself.");
  page.item(Roff::bold("#*/") + Roff::italic("tag"),
            "Notes with a nested tag that has the name in its path.");
  page.paragraph("A tag with blanks ends in a closing #, as in #two words#. Names are exact.");
}

void addDirectives(Roff& page) {
  page.section("DIRECTIVES");
  page.paragraph(
      "Notes are found that are, or whose text is, as the directive says. Days are those "
      "of the local time zone. An unknown directive is an error.");
  for (const auto& [word, finds] : tavimodel::searchDirectives())
    page.item(Roff::bold(word), finds);
}

}  // namespace

ManualPage searchTermsPage(const Release& release) {
  const std::string program = "tavicli " + release.version;
  ManualPage result{.name = "tavicli-search-terms", .section = 7, .text = {}};
  Roff page({.name = result.name, .section = 7, .date = release.date, .program = program});
  page.name(result.name, "the language of searches in notes");
  page.section("DESCRIPTION");
  page.paragraph(
      "What tavicli search and the tool search_notes of the MCP server take as a query.");
  addTerms(page);
  addTags(page);
  addDirectives(page);
  page.section("EXAMPLES");
  page.verbatim(
      "milk -#shopping           \"milk\" in the text, and not the tag\n"
      "@todo @last7days          changed this week, with something left to do\n"
      "#work @title report       tagged, and \"report\" in the title\n"
      "\"@today\"                  the text \"@today\"");
  page.section("SEE ALSO");
  page.line(Roff::bold("tavicli-search") + "(1), " + Roff::bold("tavicli") + "(1)");
  result.text = page.take();
  return result;
}

}  // namespace tavi::manual
