#include "widgets/picture_store.h"

#include <atomic>
#include <list>
#include <mutex>
#include <unordered_map>

#include "platform/work_profile.h"

namespace imageutil::store {

namespace {

// One cached thing: a decoded picture (key "d" + hash of its file's bytes) or the record of an
// output (key "o" + its path). Both keep the bytes they stand for, so a hit is confirmed byte for
// byte and a hash collision is only a miss.
struct Entry {
  std::wstring key;
  std::shared_ptr<const Bytes> bytes;
  std::shared_ptr<const DecodedPicture> picture;  // decoded pictures
  std::shared_ptr<const Pixels> premultiplied;    // decoded pictures, once painted
  std::wstring inputs;                            // records: what produced `bytes`,
  Sources sources;                                // with the bytes of the files it was made from

  std::size_t Size() const noexcept {
    std::size_t size = bytes ? bytes->size() : 0;
    for (const auto& source : sources) size += source ? source->size() : 0;
    if (picture) size += picture->argb.size() * sizeof(std::uint32_t);
    if (premultiplied) size += premultiplied->size() * sizeof(std::uint32_t);
    return size;
  }
};

// The lock guards these maps only: nothing under it reads, writes, decodes or converts, so a slow
// disk or a large picture in one window never holds another.
struct Cache {
  std::mutex lock;
  std::list<Entry> recent;  // most recently used first
  std::unordered_map<std::wstring, std::list<Entry>::iterator> index;
  std::size_t bytes = 0;
  int uses = 0;
};

Cache& TheCache() {
  static Cache cache;
  return cache;
}

std::atomic<bool> g_reuse{true};
std::atomic<int> g_failConversions{0};
std::atomic<WriteHook> g_writeHook{nullptr};

bool SameBytes(const std::shared_ptr<const Bytes>& a, const std::shared_ptr<const Bytes>& b) noexcept {
  return a == b || (a && b && *a == *b);
}

bool SameSources(const Sources& a, const Sources& b) noexcept {
  if (a.size() != b.size()) return false;
  for (std::size_t i = 0; i < a.size(); ++i) {
    if (!SameBytes(a[i], b[i])) return false;
  }
  return true;
}

// FNV-1a, 64 bits: only an index; equality is decided by the bytes themselves.
std::uint64_t HashOf(const Bytes& bytes) noexcept {
  std::uint64_t hash = 14695981039346656037ull;
  for (const BYTE b : bytes) hash = (hash ^ b) * 1099511628211ull;
  return hash;
}

std::wstring DecodedKey(std::uint64_t hash) {
  wchar_t text[20] = {};
  for (int i = 15; i >= 0; --i, hash >>= 4) text[i] = L"0123456789abcdef"[hash & 0xF];
  return L"d" + std::wstring(text, 16);
}
std::wstring RecordKey(const std::wstring& path) { return L"o" + path; }

// Under the lock.
Entry* Find(Cache& cache, const std::wstring& key) {
  const auto found = cache.index.find(key);
  if (found == cache.index.end()) return nullptr;
  cache.recent.splice(cache.recent.begin(), cache.recent, found->second);  // now the most recent
  return &*found->second;
}

void Drop(Cache& cache, std::list<Entry>::iterator entry) noexcept {
  cache.bytes -= entry->Size();
  cache.index.erase(entry->key);
  cache.recent.erase(entry);
}

void Clear(Cache& cache) noexcept {
  cache.index.clear();
  cache.recent.clear();
  cache.bytes = 0;
}

// The least recently used entries go until the cache is within its bound again.
void Trim(Cache& cache) noexcept {
  while (cache.bytes > kMaxCachedBytes && !cache.recent.empty()) Drop(cache, std::prev(cache.recent.end()));
}

// Replaces whatever the key held. An entry larger than the whole bound is not kept (its caller
// uses it uncached) and costs the others nothing.
void Put(Entry entry) {
  if (entry.Size() > kMaxCachedBytes) return;
  Cache& cache = TheCache();
  const std::lock_guard<std::mutex> guard(cache.lock);
  if (const auto old = cache.index.find(entry.key); old != cache.index.end()) Drop(cache, old->second);
  cache.recent.push_front(std::move(entry));
  const auto inserted = cache.recent.begin();
  try {
    cache.index.emplace(inserted->key, inserted);
  } catch (...) {
    cache.recent.pop_front();
    throw;
  }
  cache.bytes += inserted->Size();
  Trim(cache);
}

}  // namespace

std::optional<SourcePicture> ReadPicture(const std::wstring& path) noexcept try {
  auto bytes = std::make_shared<Bytes>();
  if (!ReadWholeFile(path, *bytes)) return std::nullopt;
  SourcePicture source;
  source.hash = HashOf(*bytes);
  source.bytes = bytes;
  const std::wstring key = DecodedKey(source.hash);
  if (IsReuseOn()) {
    Cache& cache = TheCache();
    const std::lock_guard<std::mutex> guard(cache.lock);
    if (const Entry* entry = Find(cache, key); entry != nullptr && SameBytes(entry->bytes, bytes)) {
      source.bytes = entry->bytes;
      source.picture = entry->picture;
      return source;
    }
  }
  std::shared_ptr<const DecodedPicture> picture = DecodePicture(*bytes);
  if (!picture) return std::nullopt;
  source.picture = picture;
  if (IsReuseOn()) {
    try {
      Put(Entry{key, std::move(bytes), std::move(picture), nullptr, {}, {}});
    } catch (...) {
      // Uncached, the picture is still good for this call.
    }
  }
  return source;
} catch (...) {
  return std::nullopt;
}

std::shared_ptr<const Pixels> PremultipliedOf(const SourcePicture& source) noexcept try {
  if (!source.picture) return nullptr;
  const std::wstring key = DecodedKey(source.hash);
  Cache& cache = TheCache();
  if (IsReuseOn()) {
    const std::lock_guard<std::mutex> guard(cache.lock);
    if (const Entry* entry = Find(cache, key); entry != nullptr && entry->picture == source.picture) {
      if (entry->premultiplied) return entry->premultiplied;
    }
  }
  for (int left = g_failConversions.load(); left > 0;) {
    if (g_failConversions.compare_exchange_weak(left, left - 1)) return nullptr;
  }
  std::shared_ptr<const Pixels> rows = Premultiply(*source.picture);
  if (!rows || !IsReuseOn()) return rows;
  const std::lock_guard<std::mutex> guard(cache.lock);
  if (const auto found = cache.index.find(key); found != cache.index.end()) {
    Entry& entry = *found->second;
    // Another window may have converted it meanwhile; the first result stays.
    if (entry.picture == source.picture && !entry.premultiplied) {
      const std::size_t added = rows->size() * sizeof(std::uint32_t);
      if (entry.Size() + added <= kMaxCachedBytes) {
        entry.premultiplied = rows;
        cache.bytes += added;
        Trim(cache);
      }
    }
  }
  return rows;
} catch (...) {
  return nullptr;
}

bool Holds(const std::wstring& outPath, const std::wstring& inputs, const Sources& sources) noexcept try {
  if (!IsReuseOn()) return false;
  std::shared_ptr<const Bytes> produced;
  {
    Cache& cache = TheCache();
    const std::lock_guard<std::mutex> guard(cache.lock);
    const Entry* record = Find(cache, RecordKey(outPath));
    if (record == nullptr || record->inputs != inputs || !SameSources(record->sources, sources)) return false;
    produced = record->bytes;
  }
  Bytes now;
  if (!ReadWholeFile(outPath, now) || now != *produced) return false;
  corvane::profile::Add(corvane::profile::Work::PictureReused, 0);
  return true;
} catch (...) {
  return false;
}

bool WritePng(const std::wstring& outPath, const std::wstring& inputs, const Sources& sources,
              Gdiplus::Bitmap& picture) noexcept try {
  auto png = std::make_shared<Bytes>();
  if (!EncodePng(picture, *png)) return false;
  const bool reuse = IsReuseOn();
  // The file is left alone when it already holds exactly these bytes: a second window, or a new
  // Explorer process after an earlier one rendered the same skin, writes nothing.
  Bytes existing;
  if (!reuse || !ReadWholeFile(outPath, existing) || existing != *png) {
    if (const WriteHook hook = g_writeHook.load()) hook(outPath);
    if (!WriteWholeFile(outPath, *png)) return false;
  }
  if (!reuse) return true;
  try {
    // What was drawn is what the file now holds: a later read of it need not decode it back.
    std::shared_ptr<const DecodedPicture> pixels = PixelsOf(picture);
    if (pixels) Put(Entry{DecodedKey(HashOf(*png)), png, std::move(pixels), nullptr, {}, {}});
    Put(Entry{RecordKey(outPath), std::move(png), nullptr, nullptr, inputs, sources});
  } catch (...) {
    // Unrecorded, the next call with these inputs renders again.
  }
  return true;
} catch (...) {
  return false;
}

void SetReuse(bool reuse) noexcept {
  Cache& cache = TheCache();
  const std::lock_guard<std::mutex> guard(cache.lock);
  g_reuse.store(reuse);
  Clear(cache);
}

bool IsReuseOn() noexcept { return g_reuse.load(); }

std::size_t CachedBytes() noexcept {
  Cache& cache = TheCache();
  const std::lock_guard<std::mutex> guard(cache.lock);
  return cache.bytes;
}

Use::Use() noexcept {
  Cache& cache = TheCache();
  const std::lock_guard<std::mutex> guard(cache.lock);
  ++cache.uses;
}

Use::~Use() {
  Cache& cache = TheCache();
  const std::lock_guard<std::mutex> guard(cache.lock);
  if (--cache.uses == 0) Clear(cache);
}

void FailConversionsForTest(int count) noexcept { g_failConversions.store(count); }
void SetWriteHookForTest(WriteHook hook) noexcept { g_writeHook.store(hook); }

}  // namespace imageutil::store
