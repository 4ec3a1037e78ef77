// Tables that hold the alarm configuration in other containers. Each table owns its file's mapping and its
// memory; bench/tables.h says which ones may be read during a load.

#include "bench/tables.h"

#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

#include <fstream>
#include <map>

namespace bench {

std::string ConfigOf::Path() const {
  static std::map<std::string, bool> written;
  const std::string path =
      TempFile("config_" + std::to_string(static_cast<int>(keys)) + '_' + std::to_string(lines) + '_' +
               std::to_string(alternatives) + '_' + std::to_string(version) + ".csv");
  if (!std::exchange(written[path], true)) {
    std::ofstream(path, std::ios::binary) << ConfigFile(keys, lines, alternatives, version);
  }
  return path;
}

LiteralTable::LiteralTable(const std::string& path) {
  std::ifstream file(path);
  config_.LoadConfig(file);
}

std::int64_t LiteralTable::Ask(const Question& question) const {
  std::string text;
  config_.GetValue({question.key1, question.key2, literal::Num2Str(question.number), question.key3, {}},
                   text);
  int value = -1;
  literal::Str2Num(text, value, 10);
  return value;
}

MappedFile::MappedFile(const std::string& path) {
  const int file = open(path.c_str(), O_RDONLY | O_CLOEXEC);
  struct stat status {};
  fstat(file, &status);
  const auto size = static_cast<std::size_t>(status.st_size);
  text_ = {static_cast<const char*>(mmap(nullptr, size, PROT_READ, MAP_PRIVATE | MAP_POPULATE, file, 0)),
           size};
  close(file);
}

MappedFile::~MappedFile() { munmap(const_cast<char*>(text_.data()), text_.size()); }

std::size_t ExpectedLines(std::string_view file) {
  const std::size_t second = file.find('\n') + 1;
  return file.size() / (file.find('\n', second) + 1 - second);
}

namespace {

struct RcuNode {
  cds_lfht_node link;
  rcu_head head;
  KeyView key;
  std::string_view value;
};

RcuNode* NodeOf(cds_lfht_node* link) { return reinterpret_cast<RcuNode*>(link); }

int HasKey(cds_lfht_node* link, const void* key) {
  return NodeOf(link)->key == *static_cast<const KeyView*>(key);
}

}  // namespace

RcuTable::RcuTable(const std::string& path) {
  files_.push_back(std::make_unique<MappedFile>(path));
  std::size_t buckets = 1;
  while (buckets < ExpectedLines(files_.back()->text())) {
    buckets *= 2;
  }
  table_ = cds_lfht_new(buckets, 1, 0, CDS_LFHT_AUTO_RESIZE | CDS_LFHT_ACCOUNTING, nullptr);
  InsertNewestFile();
}

RcuTable::~RcuTable() {
  cds_lfht_iter position;
  rcu_read_lock();
  for (cds_lfht_first(table_, &position); cds_lfht_iter_get_node(&position) != nullptr;
       cds_lfht_next(table_, &position)) {
    RcuNode* const node = NodeOf(cds_lfht_iter_get_node(&position));
    cds_lfht_del(table_, &node->link);
    call_rcu(&node->head, [](rcu_head* head) { delete caa_container_of(head, RcuNode, head); });
  }
  rcu_read_unlock();
  rcu_barrier();
  cds_lfht_destroy(table_, nullptr);
}

void RcuTable::Load(const std::string& path) {
  files_.push_back(std::make_unique<MappedFile>(path));
  InsertNewestFile();
}

void RcuTable::InsertNewestFile() {
  ForEachRecord(files_.back()->text(), [this](const KeyView& key, std::string_view value) {
    auto* const node = new RcuNode{{}, {}, key, value};
    rcu_read_lock();
    cds_lfht_node* const old = cds_lfht_add_replace(table_, KeyHash()(key), HasKey, &node->key, &node->link);
    rcu_read_unlock();
    if (old != nullptr) {
      call_rcu(&NodeOf(old)->head, [](rcu_head* head) { delete caa_container_of(head, RcuNode, head); });
    }
  });
}

std::int64_t RcuTable::Ask(const Question& question) const {
  rcu_read_lock();
  const std::int64_t value = AskText(question, [this](const KeyView& key) {
    cds_lfht_iter position;
    cds_lfht_lookup(table_, KeyHash()(key), HasKey, &key, &position);
    cds_lfht_node* const found = cds_lfht_iter_get_node(&position);
    return found == nullptr ? std::string_view() : NodeOf(found)->value;
  });
  rcu_read_unlock();
  return value;
}

}  // namespace bench
