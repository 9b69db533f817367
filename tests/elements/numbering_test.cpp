// Occurrence numbers: worked cases, and random sequences of changes compared with a plain model
// that counts and walks where the module looks things up.
#include <algorithm>
#include <array>
#include <memory>
#include <ostream>
#include <random>

#include "tests/elements/element_test.h"

namespace {

// An element of the model, numbered by walking its parent's children.
struct Model {
    std::string name;
    Model* parent = nullptr;
    std::uint32_t handle = 0;
    int last = -1;
    std::array<std::uint32_t, XML_INDEX_LIMIT> indices{};
    std::vector<std::unique_ptr<Model>> children;
    inline static int full_passed = 0;  // full elements that another number in front left alone

    bool full() const { return last == XML_INDEX_LIMIT - 1; }
    std::uint32_t& number(int position) { return indices.at(static_cast<std::size_t>(position)); }

    void add_level(int level) {
        for (const auto& child : children) {
            if (child->full()) {  // and so is all below it
                ++full_passed;
                continue;
            }
            for (int i = XML_INDEX_LIMIT - 1; i > level + 1; --i) {
                child->number(i) = child->number(i - 1);
            }
            child->number(level + 1) = 1;
            ++child->last;
            child->add_level(level);
        }
    }

    Model* add(const std::string& new_name, const Model* before) {
        auto child = std::make_unique<Model>();
        child->name = new_name;
        child->parent = this;
        child->last = last;
        child->indices = indices;
        auto at = children.end();
        std::uint32_t count = 0;
        for (auto i = children.begin(); i != children.end(); ++i) {
            if (i->get() == before) at = i;
            if ((*i)->name != new_name || full()) continue;
            if (++count == 1 && (*i)->last == last) {
                (*i)->add_level((*i)->last);
                (*i)->number(++(*i)->last) = 1;
            }
        }
        if (count > 0) child->number(++child->last) = count + 1;
        return children.insert(at, std::move(child))->get();
    }

    void collect(std::vector<Model*>& all) {
        all.push_back(this);
        for (const auto& child : children) child->collect(all);
    }
};

// Compares the whole tree with the model. False at the first difference.
bool same_tree(Model& model) {
    std::string numbers;
    for (int i = 0; i <= model.last; ++i) append_number(numbers, model.number(i));
    std::vector<std::uint32_t> handles;
    for (const auto& child : model.children) handles.push_back(child->handle);
    EXPECT_EQ(api().xml_element_name(model.handle), model.name);
    EXPECT_EQ(numbers_of(model.handle), numbers) << model.name;
    EXPECT_EQ(children_of(model.handle), handles);
    return !::testing::Test::HasFailure() &&
           std::all_of(model.children.begin(), model.children.end(),
                       [](const auto& child) { return same_tree(*child); });
}

struct Shape {
    const char* name;
    int names;            // how many names occur
    int deeper;           // of 100 additions, so many go below the newest element
    int parents;          // the others go below one of so many oldest elements
    int releases;         // of 100 steps, so many release an element
    std::size_t largest;  // then a big part is released
    int doubled;          // levels to start with, each the second child of one name
};

void PrintTo(const Shape& shape, std::ostream* out) {
    *out << shape.name;
}

class Numbering : public ElementTest, public ::testing::WithParamInterface<Shape> {
  protected:
    std::mt19937 random{std::random_device{}()};
    std::unique_ptr<Model> top = std::make_unique<Model>();
    std::vector<Model*> all;

    int roll(std::size_t sides) { return static_cast<int>(random() % sides); }
    Model& any(std::size_t among) { return *all[random() % std::min(among, all.size())]; }

    void release(Model& model) {
        EXPECT_EQ(xml.xml_free_element(model.handle), 1);
        auto& siblings = model.parent->children;
        siblings.erase(std::find_if(siblings.begin(), siblings.end(),
                                    [&](const auto& sibling) { return sibling.get() == &model; }));
        all.clear();
        top->collect(all);
    }

    void add(const Shape& shape) {
        Model& parent =
            roll(100) < shape.deeper ? *all.back() : any(static_cast<std::size_t>(shape.parents));
        const std::string name = std::to_string(roll(static_cast<std::size_t>(shape.names)));
        const auto count = parent.children.size();
        const std::size_t at = count == 0 ? 0 : random() % (count + 1);
        const Model* const before = at < count ? parent.children[at].get() : nullptr;
        std::uint32_t handle = 0;
        if (before && at > 0 && roll(2) == 0) {
            handle = xml.xml_add_sibling(parent.children[at - 1]->handle, name.c_str());
        } else {
            handle = xml.xml_new_element(parent.handle, name.c_str(), before ? before->handle : 0);
        }
        add_to_model(parent, name, before, handle);
    }

    void add_to_model(Model& parent, const std::string& name, const Model* before,
                      std::uint32_t handle) {
        Model* const added = parent.add(name, before);
        added->handle = handle;
        all.push_back(added);
    }

    // A new top element with levels below each other that each bring a number of their own.
    void start(int doubled_levels) {
        top = std::make_unique<Model>();
        top->name = "top";
        top->handle = xml.xml_add_child(0, "top");
        all = {top.get()};
        for (int level = 0; level < doubled_levels; ++level) {
            Model& parent = *all.back();
            for (int i = 0; i < 2; ++i) {
                add_to_model(parent, "0", nullptr, xml.xml_add_child(parent.handle, "0"));
            }
        }
    }
};

TEST_P(Numbering, AgreesWithThePlainModel) {
    const Shape& shape = GetParam();
    Model::full_passed = 0;
    for (int run = 0; run < 8; ++run) {
        const auto seed = std::random_device{}();
        SCOPED_TRACE("seed " + std::to_string(seed));
        random.seed(seed);
        start(shape.doubled);
        for (int step = 0; step < 3000; ++step) {
            if (all.size() > 1 && (roll(100) < shape.releases || all.size() > shape.largest)) {
                release(*all[1 + random() % (all.size() - 1)]);
            } else {
                add(shape);
            }
            if (step % 100 != 99) continue;
            ASSERT_TRUE(same_tree(*top)) << "step " << step;
        }
        xml.xml_free_element(top->handle);
    }
    RecordProperty("full_elements_passed", Model::full_passed);
    EXPECT_TRUE(shape.doubled == 0 || Model::full_passed > 0) << "no element became full";
}

INSTANTIATE_TEST_SUITE_P(Shapes, Numbering,
                         ::testing::Values(Shape{"flat", 3, 0, 1, 30, 400, 0},
                                           Shape{"many_names", 60, 0, 2, 45, 400, 0},
                                           Shape{"bushy", 3, 20, 6, 15, 600, 0},
                                           Shape{"deep", 2, 60, 400, 5, 600, 0},
                                           Shape{"full", 1, 70, 100, 1, 5000, 17}),
                         [](const auto& shape) { return shape.param.name; });

TEST_F(ElementTest, NumbersWhatIsBelowTheFirstOfAName) {
    const std::uint32_t top = xml.xml_add_child(0, "P");
    const std::uint32_t first = xml.xml_add_child(top, "A");
    xml.xml_add_child(first, "Q");
    const std::uint32_t r = xml.xml_add_child(first, "R");
    xml.xml_add_child(first, "R");
    xml.xml_add_child(r, "S");
    xml.xml_add_child(r, "S");
    EXPECT_EQ(describe(top), "P[](A[](Q[] R[1](S[1,1] S[1,2]) R[2]))");
    xml.xml_add_child(top, "B");
    xml.xml_add_child(top, "A");
    EXPECT_EQ(describe(top), "P[](A[1](Q[1] R[1,1](S[1,1,1] S[1,1,2]) R[1,2]) B[] A[2])");
    EXPECT_EQ(xml.xml_element_index(r, 1), 1U);
    EXPECT_EQ(xml.xml_element_index(r, 2), XML_NO_INDEX);
    EXPECT_EQ(xml.xml_element_index(r, -1), XML_NO_INDEX);
    xml.xml_free_element(first);
    xml.xml_add_child(top, "A");
    EXPECT_EQ(describe(top), "P[](B[] A[2] A[2])") << "as many as are present, and one";
    xml.xml_free_element(top);
}

TEST_F(ElementTest, StopsNumberingAtTwentyNumbers) {
    const std::uint32_t top = xml.xml_add_child(0, "L");
    std::uint32_t at = top;
    std::string path;
    for (int level = 1; level <= 25; ++level) {
        xml.xml_add_child(at, "L");
        at = xml.xml_add_child(at, "L");
        if (level <= XML_INDEX_LIMIT) append_number(path, 2);
        EXPECT_EQ(numbers_of(at), path) << level;
    }
    // A number in front: an element with 19 numbers becomes full, full ones stay as they are.
    const std::uint32_t above = xml.xml_add_child(0, "above");
    const std::uint32_t first = xml.xml_add_child(above, "E");
    std::vector<std::uint32_t> levels = {first};
    for (int level = 1; level <= 25; ++level) {
        xml.xml_add_child(levels.back(), "L");
        levels.push_back(xml.xml_add_child(levels.back(), "L"));
    }
    xml.xml_add_child(above, "E");
    EXPECT_EQ(numbers_of(first), "1");
    EXPECT_EQ(numbers_of(levels[1]), "1,2");
    EXPECT_EQ(numbers_of(levels[19]), "1" + path.substr(1));
    EXPECT_EQ(numbers_of(levels[20]), path);
    EXPECT_EQ(numbers_of(levels[25]), path);
    xml.xml_free_element(above);
    xml.xml_free_element(top);
}

}  // namespace
