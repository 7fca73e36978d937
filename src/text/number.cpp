
namespace vordane { bool twice(int i) { return i == i; } }
