#include "platform/model/search/search_plan.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include <algorithm>
#include <unordered_map>

#include "platform/markdown/ast.h"
#include "platform/model/storage/row_ids.h"
#include "platform/model/storage/text_facts.h"
#include "platform/system/file_types.h"
#include "platform/text/folding.h"

namespace tavimodel {
namespace {

using Kind = SearchCondition::Kind;

bool asksForFacts(const SearchCondition& condition) {
  switch (condition.kind) {
    case Kind::todo:
    case Kind::done:
    case Kind::task:
    case Kind::images:
    case Kind::code:
    case Kind::empty:
    case Kind::wikiLinks:
      return true;
    default:
      return false;
  }
}

bool any(const SearchQuery& query, bool (*test)(const SearchCondition&)) {
  return std::any_of(query.groups.begin(), query.groups.end(), [&](const auto& group) {
    return std::any_of(group.begin(), group.end(), test);
  });
}

/// A table of this connection's own with the facts that noteSummary lacks. False: it lacks none.
bool workOutUnknownFacts(sqlite::Connection& connection) {
  sqlite::Query unknown = connection.query(
      "SELECT note.id, note.text FROM noteSummary s JOIN note ON note.id = s.note "
      "WHERE s.searchRow IS NULL AND s.textDigest IS NULL AND s.encrypted = 0");
  if (!unknown.step()) return false;
  connection.execute(
      "CREATE TEMP TABLE IF NOT EXISTS workedOut (note INTEGER PRIMARY KEY, "
      "todoIncomplete INTEGER, todoCompleted INTEGER, features INTEGER); "
      "DELETE FROM temp.workedOut");
  do {
    const TextFacts facts = TextFacts::of(unknown.text(1));
    sqlite::Query insert = connection.query("INSERT INTO temp.workedOut VALUES (?1, ?2, ?3, ?4)");
    insert.bind(1, unknown.integer(0)).bind(2, facts.todoIncomplete);
    insert.bind(3, facts.todoCompleted).bind(4, facts.features).run();
  } while (unknown.step());
  return true;
}

std::string hasFeature(TextFacts::Feature bit) {
  return fmt::format("(features & {}) <> 0", static_cast<std::int64_t>(bit));
}

void isImageName(sqlite3_context* context, int, sqlite3_value** values) {
  const auto* bytes = reinterpret_cast<const char*>(sqlite3_value_text(values[0]));
  const bool image = bytes != nullptr && platform::system::fileTypeOf(bytes).conformsToImage;
  sqlite3_result_int(context, image ? 1 : 0);
}

/// The ids of the notes that other notes link to by their titles.
std::string linkedNotes(sqlite::Connection& connection) {
  std::unordered_map<std::string, std::vector<std::int64_t>> notesByTitle;
  sqlite::Query titles = connection.query("SELECT note, title FROM noteSummary");
  while (titles.step()) {
    notesByTitle[platform::text::foldedForSearch(titles.text(1))].push_back(titles.integer(0));
  }
  std::vector<std::int64_t> linked;
  sqlite::Query texts = connection.query(
      fmt::format("SELECT note.id, note.text FROM noteSummary s JOIN note ON note.id = s.note "
                  "WHERE s.encrypted = 0 AND ifnull(s.permanentlyDeleted, 0) = 0 "
                  "AND (s.features IS NULL OR (s.features & {}) <> 0)",
                  static_cast<std::int64_t>(TextFacts::wikiLinks)));
  while (texts.step()) {
    const auto summary = zephyrdown::ZDKAST::fromMarkdown(std::string(texts.text(1))).textSummary();
    for (const std::string& target : summary.wikiLinks) {
      // A target may name a heading inside the note, "Title/Heading", and a title may have a slash.
      for (std::size_t length = target.size(); length != std::string::npos && length > 0;
           length = target.rfind('/', length - 1)) {
        const auto found =
            notesByTitle.find(platform::text::foldedForSearch(target.substr(0, length)));
        if (found == notesByTitle.end()) continue;
        for (const std::int64_t note : found->second) {
          if (note != texts.integer(0)) linked.push_back(note);
        }
        break;
      }
    }
  }
  return jsonArray(linked);
}

}  // namespace

SearchPlan::SearchPlan(const SearchQuery& query, sqlite::Connection& connection,
                       std::int64_t mostDriven)
    : connection_(connection), titlesOnly_(query.titlesOnly), ocrOnly_(query.ocrOnly) {
  areFactsMissing_ = any(query, asksForFacts) && workOutUnknownFacts(connection);
  if (any(query, [](const SearchCondition& c) { return c.kind == Kind::files; })) {
    sqlite3_create_function(connection.handle(), "isImageName", 1,
                            SQLITE_UTF8 | SQLITE_DETERMINISTIC, nullptr, isImageName, nullptr,
                            nullptr);
  }
  for (const auto& group : query.groups) addGroup(group);
  chooseDriver(mostDriven);
}

void SearchPlan::addGroup(const std::vector<SearchCondition>& group) {
  const auto isTerm = [](const SearchCondition& c) { return c.kind == Kind::term; };
  if (std::none_of(group.begin(), group.end(), isTerm)) {
    std::string sql;
    for (const SearchCondition& condition : group) {
      if (!sql.empty()) sql += " OR ";
      // NULL, which is not known, is false.
      sql += condition.negated ? fmt::format("NOT ifnull({}, 0)", expression(condition))
                               : expression(condition);
    }
    where_ += fmt::format(" AND ({})", sql);
    return addDriver(group);
  }
  std::vector<OpenCondition> open;
  for (const SearchCondition& condition : group) {
    OpenCondition& added = open.emplace_back();
    added.negated = condition.negated;
    if (isTerm(condition)) {
      added.term.emplace(condition.text, platform::text::CaseFolding::full);
    } else {
      added.column = columnCount_++;
      columns_ += ", " + expression(condition);
    }
  }
  groups_.push_back(std::move(open));
  const bool required = std::all_of(group.begin(), group.end(), [&](const SearchCondition& c) {
    return isTerm(c) && !c.negated;
  });
  if (!required || ocrOnly_) return;
  std::vector<std::string>& terms = requiredTerms_.emplace_back();
  for (const SearchCondition& condition : group) terms.push_back(condition.text);
}

/// SQLite, which keeps no statistics here, would rather walk through all notes of a location than
/// look up the ten of a tag: so the notes that an index gives are put ahead of the others.
void SearchPlan::addDriver(const std::vector<SearchCondition>& group) {
  std::string notes;
  for (const SearchCondition& condition : group) {
    const std::string some = condition.negated ? std::string() : notesOf(condition);
    if (some.empty()) return;
    notes += (notes.empty() ? "" : " UNION ") + some;
  }
  drivers_.push_back(group.size() == 1 ? notes + " GROUP BY note" : notes);
}

void SearchPlan::chooseDriver(std::int64_t most) {
  for (const std::string& driver : drivers_) {
    sqlite::Query count = connection_.query(fmt::format(
        "SELECT count(*) FROM (SELECT 1 FROM ({}) LIMIT ?{})", driver, parameters_.size() + 1));
    bind(count);
    const std::int64_t limit = std::min(most, drivenNotes_.value_or(most) - 1) + 1;
    count.bind(parameterCount() + 1, limit).step();
    if (count.integer(0) >= limit) continue;
    drivenNotes_ = count.integer(0);
    driver_ = driver;
  }
}

std::string SearchPlan::source() const {
  if (driver_.empty()) return "noteSummary s";
  return fmt::format("({}) driver CROSS JOIN noteSummary s ON s.note = driver.note", driver_);
}

std::string SearchPlan::parameter(Parameter value) {
  parameters_.push_back(std::move(value));
  return fmt::format("?{}", parameters_.size());
}

void SearchPlan::bind(sqlite::Query& query) const {
  const int count = std::min(parameterCount(), query.parameterCount());
  for (int number = 1; number <= count; ++number) {
    const Parameter& value = parameters_[static_cast<std::size_t>(number) - 1];
    if (const double* seconds = std::get_if<double>(&value)) {
      query.bind(number, *seconds);
    } else {
      query.bind(number, std::string_view(std::get<std::string>(value)));
    }
  }
}

std::string SearchPlan::range(const SearchCondition& condition, std::string_view column) {
  std::string sql = fmt::format("({} IS NOT NULL", column);
  if (condition.from) sql += fmt::format(" AND {} >= {}", column, parameter(*condition.from));
  if (condition.to) sql += fmt::format(" AND {} < {}", column, parameter(*condition.to));
  return sql + ")";
}

std::string SearchPlan::tagsNamed(const SearchCondition& condition) {
  const std::string name = parameter(condition.text);
  switch (condition.kind) {
    case Kind::exactTag:
      return fmt::format("title = {}", name);
    case Kind::subtag:
      return fmt::format("title <> {0} AND instr('/' || title || '/', '/' || {0} || '/') > 0",
                         name);
    default:  // "0" is the character behind "/"
      return fmt::format("title = {0} OR (title > {0} || '/' AND title < {0} || '0')", name);
  }
}

/// A test of what a text holds, over the columns of `noteSummary s` and, where they are not known,
/// over those of temp.workedOut.
std::string SearchPlan::fact(std::string_view test) const {
  if (!areFactsMissing_) return fmt::format("(s.encrypted = 0 AND {})", test);
  return fmt::format(
      "(s.encrypted = 0 AND CASE WHEN s.textDigest IS NULL "
      "THEN s.note IN (SELECT note FROM temp.workedOut WHERE {0}) ELSE {0} END)",
      test);
}

/// A SELECT of the notes in which the condition may hold, by an index; empty where there is none.
std::string SearchPlan::notesOf(const SearchCondition& condition) {
  const auto anywhere = [](const std::string& test) {
    // The indexes of dates and pins have the location in front.
    return "SELECT note FROM noteSummary WHERE trashed IN (0, 1) AND archived IN (0, 1) AND " +
           test;
  };
  const auto withState = [](std::string_view test) {
    return fmt::format("SELECT note FROM noteSummary WHERE {}", test);
  };
  switch (condition.kind) {
    case Kind::tag:
    case Kind::exactTag:
    case Kind::subtag:
      return fmt::format("SELECT note FROM noteTag WHERE tag IN (SELECT id FROM tag WHERE {})",
                         tagsNamed(condition));
    case Kind::modified:
      return anywhere(range(condition, "modificationDate"));
    case Kind::created:
      return anywhere(range(condition, "creationDate"));
    case Kind::pinned:
      return anywhere("pinned = 1");
    case Kind::locked:
      return withState("encrypted = 1");
    case Kind::readOnly:
      return withState("readOnly = 1");
    case Kind::untitled:
      return withState("ifnull(title, '') = ''");
    case Kind::empty:
      return areFactsMissing_ ? std::string() : withState(hasFeature(TextFacts::blank));
    case Kind::files:
      return "SELECT note FROM file WHERE NOT isImageName(filename)";
    case Kind::attachments:
      return "SELECT note FROM file";
    case Kind::ocr:
      return "SELECT note FROM file WHERE ifnull(ocrText, '') <> ''";
    default:
      return {};
  }
}

std::string SearchPlan::expression(const SearchCondition& condition) {
  switch (condition.kind) {
    case Kind::term:
      break;
    case Kind::tag:
    case Kind::exactTag:
    case Kind::subtag:
      return fmt::format("s.note IN ({})", notesOf(condition));
    case Kind::files:
    case Kind::attachments:
    case Kind::ocr:
      return fmt::format("(s.encrypted = 0 AND s.note IN ({}))", notesOf(condition));
    case Kind::modified:
      return range(condition, "s.modificationDate");
    case Kind::created:
      return range(condition, "s.creationDate");
    case Kind::todo:
      return fact("todoIncomplete > 0");
    case Kind::done:
      return fact("todoIncomplete = 0 AND todoCompleted > 0");
    case Kind::task:
      return fact("todoIncomplete + todoCompleted > 0");
    case Kind::tagged:
      return "EXISTS (SELECT 1 FROM noteTag t WHERE t.note = s.note)";
    case Kind::untagged:
      return "NOT EXISTS (SELECT 1 FROM noteTag t WHERE t.note = s.note)";
    case Kind::pinned:
      return "s.pinned = 1";
    case Kind::images:
      return fact(hasFeature(TextFacts::images));
    case Kind::code:
      return fact(hasFeature(TextFacts::code));
    case Kind::locked:
      return "s.encrypted = 1";
    case Kind::readOnly:
      return "s.readOnly = 1";
    case Kind::empty:
      return fact(hasFeature(TextFacts::blank));
    case Kind::untitled:
      return "ifnull(s.title, '') = ''";
    case Kind::wikiLinks:
      return fact(hasFeature(TextFacts::wikiLinks));
    case Kind::backlinks:
      return fmt::format("s.note IN (SELECT value FROM json_each({}))",
                         parameter(linkedNotes(connection_)));
  }
  return "0";
}

bool SearchPlan::matches(std::string_view title, std::string_view text, const sqlite::Query& row,
                         int column) const {
  const auto holds = [&](const OpenCondition& condition) {
    if (!condition.term) return (row.integer(column + condition.column) != 0) != condition.negated;
    const bool found =
        (!titlesOnly_ && condition.term->isIn(text)) || (!ocrOnly_ && condition.term->isIn(title));
    return found != condition.negated;
  };
  return std::all_of(groups_.begin(), groups_.end(), [&](const auto& group) {
    return std::any_of(group.begin(), group.end(), holds);
  });
}

}  // namespace tavimodel
