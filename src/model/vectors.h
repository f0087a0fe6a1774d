// Growable vectors of the data model.
//
//   MY_TArrayAsVector<T>      values (also pointers that it does not own)
//   MY_TIArrayAsVector<T>     pointers to T, owned unless told otherwise
//   MY_TISArrayAsVector<T>    the same, kept sorted as elements are added
//
// Their counts are part of what callers see, so they follow fixed rules:
//   - constructed from (upper, delta): capacity and initial_size are upper + 1,
//     count is 0;
//   - Add into a full vector grows the capacity by exactly delta (a constant
//     step, never doubling) and returns the new count (the sorted Add returns
//     the element's final index);
//   - operator[](i) with count <= i < capacity raises count to i + 1: reading
//     one cell past the end extends the vector by one gap. An index at or past
//     capacity (or negative) gives an error cell: a default value for the
//     value vector, null for the pointer vectors. Writing to it has no effect
//     on the vector;
//   - flush destroys owned elements and starts again with initial_size cells.
// Cells are value-initialised, so a gap reads as T{} (or null).
#pragma once

#include <algorithm>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

// What a search by value returns when nothing matches.
constexpr int kNotFound = 2147483647;

template <class T>
class MY_TArrayAsVector {
 public:
  explicit MY_TArrayAsVector(int upper = 0, int delta = 5)
      : capacity_(std::max(upper + 1, 0)),
        initial_size_(capacity_),
        delta_(delta),
        data_(new_cells(capacity_)) {}

  MY_TArrayAsVector(const MY_TArrayAsVector& other)
      : capacity_(other.capacity_),
        count_(other.count_),
        initial_size_(other.initial_size_),
        delta_(other.delta_),
        data_(new_cells(other.capacity_)) {
    std::copy(other.data_.get(), other.data_.get() + other.capacity_, data_.get());
  }
  MY_TArrayAsVector& operator=(const MY_TArrayAsVector& other) {
    if (this != &other) {
      MY_TArrayAsVector copy(other);
      swap(copy);
    }
    return *this;
  }
  MY_TArrayAsVector(MY_TArrayAsVector&& other) noexcept { swap(other); }
  MY_TArrayAsVector& operator=(MY_TArrayAsVector&& other) noexcept {
    swap(other);
    return *this;
  }
  ~MY_TArrayAsVector() = default;

  void swap(MY_TArrayAsVector& other) noexcept {
    std::swap(capacity_, other.capacity_);
    std::swap(count_, other.count_);
    std::swap(initial_size_, other.initial_size_);
    std::swap(delta_, other.delta_);
    std::swap(data_, other.data_);
  }

  // Stores at count, growing by delta when full. Returns the new count.
  int Add(const T& element) {
    grow_if_full();
    data_[static_cast<std::size_t>(count_)] = element;
    return ++count_;
  }
  int Add(T&& element) {
    grow_if_full();
    data_[static_cast<std::size_t>(count_)] = std::move(element);
    return ++count_;
  }

  T& operator[](int i) {
    if (i >= 0 && i < count_) return data_[static_cast<std::size_t>(i)];
    if (i >= count_ && i < capacity_) {
      count_ = i + 1;
      return data_[static_cast<std::size_t>(i)];
    }
    error_cell() = T{};
    return error_cell();
  }
  // Read-only access never extends: a cell at or past count reads as stored
  // (a default value), one past capacity as the error cell.
  const T& operator[](int i) const {
    if (i >= 0 && i < capacity_) return data_[static_cast<std::size_t>(i)];
    error_cell() = T{};
    return error_cell();
  }

  void flush() {
    data_ = new_cells(initial_size_);
    capacity_ = initial_size_;
    count_ = 0;
  }

  // Index of the first element equal to `value`, or kNotFound.
  int find(const T& value) const {
    for (int i = 0; i < count_; ++i) {
      if (data_[static_cast<std::size_t>(i)] == value) return i;
    }
    return kNotFound;
  }

  int count() const { return count_; }
  bool empty() const { return count_ == 0; }
  int capacity() const { return capacity_; }
  int initial_size() const { return initial_size_; }
  int lower_bound() const { return 0; }
  int delta() const { return delta_; }

  // The elements in use, 0 .. count - 1.
  T* begin() { return data_.get(); }
  T* end() { return data_.get() + count_; }
  const T* begin() const { return data_.get(); }
  const T* end() const { return data_.get() + count_; }

 private:
  static std::unique_ptr<T[]> new_cells(int n) {
    return std::make_unique<T[]>(static_cast<std::size_t>(n));
  }
  void grow_if_full() {
    if (count_ != capacity_) return;
    // A zero step would leave no room; one cell is the least a step can add.
    const int grown = capacity_ + (delta_ > 0 ? delta_ : 1);
    std::unique_ptr<T[]> cells = new_cells(grown);
    std::move(data_.get(), data_.get() + capacity_, cells.get());
    data_ = std::move(cells);
    capacity_ = grown;
  }
  // One error cell shared by all vectors of the same element type.
  static T& error_cell() {
    static T cell{};
    return cell;
  }

  int capacity_ = 0;
  int count_ = 0;
  int initial_size_ = 0;
  int delta_ = 5;
  std::unique_ptr<T[]> data_;
};

template <class T>
class MY_TIArrayAsVector {
 public:
  explicit MY_TIArrayAsVector(int upper = 0, int delta = 5)
      : cells_(static_cast<std::size_t>(std::max(upper + 1, 0)), nullptr),
        initial_size_(std::max(upper + 1, 0)),
        delta_(delta) {}

  ~MY_TIArrayAsVector() { destroy_elements(); }

  // Clones each element of `other` with T's copy constructor (null stays null).
  MY_TIArrayAsVector(const MY_TIArrayAsVector& other)
      : MY_TIArrayAsVector(other.initial_size_ - 1, other.delta_) {
    clone_from(other);
  }
  // Flushes this vector, then clones the elements of `other`.
  MY_TIArrayAsVector& operator=(const MY_TIArrayAsVector& other) {
    if (this == &other) return *this;
    flush();
    clone_from(other);
    return *this;
  }
  MY_TIArrayAsVector(MY_TIArrayAsVector&& other) noexcept
      : cells_(std::move(other.cells_)),
        count_(std::exchange(other.count_, 0)),
        initial_size_(other.initial_size_),
        delta_(other.delta_),
        owns_elements_(other.owns_elements_) {
    other.cells_.assign(static_cast<std::size_t>(other.initial_size_), nullptr);
  }
  MY_TIArrayAsVector& operator=(MY_TIArrayAsVector&& other) noexcept {
    if (this == &other) return *this;
    destroy_elements();
    cells_ = std::move(other.cells_);
    count_ = std::exchange(other.count_, 0);
    initial_size_ = other.initial_size_;
    delta_ = other.delta_;
    owns_elements_ = other.owns_elements_;
    other.cells_.assign(static_cast<std::size_t>(other.initial_size_), nullptr);
    return *this;
  }

  // Stores at count, growing by delta when full. Returns the new count.
  int Add(T* element) {
    grow_if_full();
    cells_[static_cast<std::size_t>(count_)] = element;
    return ++count_;
  }

  T*& operator[](int i) {
    if (i >= 0 && i < count_) return cells_[static_cast<std::size_t>(i)];
    if (i >= count_ && i < capacity()) {
      count_ = i + 1;
      return cells_[static_cast<std::size_t>(i)];
    }
    null_slot_ = nullptr;
    return null_slot_;
  }
  T* operator[](int i) const {
    if (i >= 0 && i < capacity()) return cells_[static_cast<std::size_t>(i)];
    return nullptr;
  }

  // Destroys owned elements, then starts again with initial_size empty cells.
  void flush() {
    destroy_elements();
    cells_.assign(static_cast<std::size_t>(initial_size_), nullptr);
    count_ = 0;
  }

  // Whether flush and destruction delete the elements (true after construction).
  bool owns_elements() const { return owns_elements_; }
  void owns_elements(bool owns) { owns_elements_ = owns; }

  // Index of the cell holding `element` (the same pointer), or -1.
  int find(const T* element) const {
    for (int i = 0; i < count_; ++i) {
      if (cells_[static_cast<std::size_t>(i)] == element) return i;
    }
    return -1;
  }

  int count() const { return count_; }
  bool empty() const { return count_ == 0; }
  int capacity() const { return static_cast<int>(cells_.size()); }
  int initial_size() const { return initial_size_; }
  int lower_bound() const { return 0; }
  int delta() const { return delta_; }

  // The cells in use, 0 .. count - 1 (a cell may hold null).
  T** begin() { return cells_.data(); }
  T** end() { return cells_.data() + count_; }
  T* const* begin() const { return cells_.data(); }
  T* const* end() const { return cells_.data() + count_; }

 protected:
  void grow_if_full() {
    if (count_ == capacity()) cells_.resize(cells_.size() + static_cast<std::size_t>(step()));
  }
  // Swaps cells i and j.
  void swap_cells(int i, int j) {
    std::swap(cells_[static_cast<std::size_t>(i)], cells_[static_cast<std::size_t>(j)]);
  }
  T* cell(int i) const { return cells_[static_cast<std::size_t>(i)]; }

 private:
  int step() const { return delta_ > 0 ? delta_ : 1; }
  void destroy_elements() {
    if (!owns_elements_) return;
    for (T*& p : cells_) {
      delete p;
      p = nullptr;
    }
  }
  void clone_from(const MY_TIArrayAsVector& other) {
    for (int i = 0; i < other.count_; ++i) {
      const T* p = other.cells_[static_cast<std::size_t>(i)];
      Add(p ? new T(*p) : nullptr);
    }
  }

  std::vector<T*> cells_;
  int count_ = 0;
  int initial_size_;
  int delta_;
  T* null_slot_ = nullptr;
  bool owns_elements_ = true;
};

// Sorted owning vector. `Precedes(a, b)` tells whether a goes before b; the
// default is T's operator<. An added element moves to the front by swaps with
// its left neighbour while it precedes it, so equal elements keep their order
// of arrival.
template <class T, class Precedes = std::less<T>>
class MY_TISArrayAsVector : private MY_TIArrayAsVector<T> {
  using Base = MY_TIArrayAsVector<T>;

 public:
  explicit MY_TISArrayAsVector(int upper = 0, int delta = 5) : Base(upper, delta) {}

  // Returns the element's final index.
  int Add(T* element) {
    int i = Base::Add(element) - 1;
    Precedes precedes;
    while (i > 0 && Base::cell(i) && Base::cell(i - 1) &&
           precedes(*Base::cell(i), *Base::cell(i - 1))) {
      Base::swap_cells(i, i - 1);
      --i;
    }
    return i;
  }

  using Base::begin;
  using Base::capacity;
  using Base::count;
  using Base::delta;
  using Base::empty;
  using Base::end;
  using Base::find;
  using Base::flush;
  using Base::initial_size;
  using Base::lower_bound;
  using Base::owns_elements;
  using Base::operator[];
};
