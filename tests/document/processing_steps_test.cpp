#include "document/processing_steps.h"

#include <gtest/gtest.h>

namespace zolt {
namespace {

using plist::Ref;

ProcessingStep step(int dimension, StepData data) {
    ProcessingStep s;
    s.dimension = static_cast<uint8_t>(dimension);
    s.data = std::move(data);
    return s;
}

// Saves, writes as text, reads the text and loads: the whole road of a document.
std::optional<ProcessingStep> throughText(const ProcessingStep& s) {
    Ref saved(saveStep(s));
    if (!saved) return std::nullopt;
    Ref back(plist::read(plist::write(saved.get())));
    return loadStep(back.get());
}

// The body of a written dictionary, without the file's header and closing lines.
std::string body(const plist::Value* v) {
    const std::string text = plist::write(v);
    const size_t begin = text.find("<dict>");
    return text.substr(begin, text.rfind("</plist>") - begin);
}

std::string savedText(const ProcessingStep& s) {
    Ref saved(saveStep(s));
    return saved ? body(saved.get()) : "";
}

// The saved dictionary without one of its keys.
Ref without(const ProcessingStep& s, const std::string& key) {
    Ref saved(saveStep(s));
    Ref d(plist::createDictionary());
    for (size_t i = 0; i < saved->keys.size(); ++i)
        if (saved->keys[i] != key)
            plist::addToDictionary(d.get(), saved->keys[i], plist::retain(saved->items[i]));
    return d;
}

FourierTransformStep directFt() {
    FourierTransformStep ft;
    ft.ftSize = 32768;
    ft.flags = ft_flags::kQuadrature | ft_flags::kApplyWeights | ft_flags::kExponential |
               ft_flags::kTruncation | ft_flags::kStopBeforeTransform;
    ft.weights[kWeightExponential] = 0.3f;
    ft.weights[kWeightTruncation] = 75.0f;
    ft.weights[kWeightSineBell] = 90.0f;  // its bit is off: not saved
    ft.deleteFirst = 4;
    return ft;
}

TEST(FourierTransformRecord, SavesExactlyTheDocumentedKeys) {
    Ref saved(saveStep(step(2, directFt())));
    EXPECT_EQ(body(saved.get()),
              "<dict>\n"
              "\t<key>! Processing</key>\n\t<string>Fourier Transform</string>\n"
              "\t<key>! f-index</key>\n\t<integer>2</integer>\n"
              "\t<key>FT size</key>\n\t<integer>32768</integer>\n"
              "\t<key>Use Linear Prediction</key>\n\t<false/>\n"
              "\t<key>apply weights</key>\n\t<true/>\n"
              "\t<key>conjugate</key>\n\t<false/>\n"
              "\t<key>delete first</key>\n\t<integer>4</integer>\n"
              "\t<key>exp broadening</key>\n\t<real>0.300000011920929</real>\n"
              "\t<key>hypercomplex</key>\n\t<false/>\n"
              "\t<key>magnitude</key>\n\t<false/>\n"
              "\t<key>quadrature</key>\n\t<true/>\n"
              "\t<key>real FT</key>\n\t<false/>\n"
              "\t<key>subtract D.C.</key>\n\t<false/>\n"
              "\t<key>truncate</key>\n\t<real>75</real>\n"
              "</dict>\n");
}

TEST(FourierTransformRecord, ReloadsWithoutTheTransientFlag) {
    const auto back = throughText(step(2, directFt()));
    ASSERT_TRUE(back);
    const auto& ft = std::get<FourierTransformStep>(back->data);
    EXPECT_EQ(ft.flags, ft_flags::kQuadrature | ft_flags::kApplyWeights | ft_flags::kExponential |
                            ft_flags::kTruncation);
    EXPECT_EQ(ft.weights[kWeightSineBell], 0.0f);
    EXPECT_EQ(ft.shuffling, Shuffling::None);
    EXPECT_EQ(ft.maxIstIterations, 0);
    EXPECT_EQ(savedText(*back), savedText(step(2, directFt())));  // the rest as it was saved
}

TEST(FourierTransformRecord, ShufflingIsReadByItsFirstLetter) {
    FourierTransformStep ft = directFt();
    Ref none(saveStep(step(1, ft)));
    EXPECT_EQ(plist::lookUp(none.get(), "shuffling"), nullptr);
    EXPECT_EQ(plist::lookUp(none.get(), "max IST iterations"), nullptr);

    ft.shuffling = Shuffling::EchoAntiEcho;
    ft.maxIstIterations = 200;
    Ref echo(saveStep(step(1, ft)));
    EXPECT_EQ(*plist::textOf(plist::lookUp(echo.get(), "shuffling")), "echo anti-echo");
    const auto back = throughText(step(1, ft));
    EXPECT_EQ(std::get<FourierTransformStep>(back->data).shuffling, Shuffling::EchoAntiEcho);
    EXPECT_EQ(std::get<FourierTransformStep>(back->data).maxIstIterations, 200);

    for (auto [text, expected] : {std::pair{"phase sensitive", Shuffling::PhaseSensitive},
                                  std::pair{"States-TPPI", Shuffling::None}}) {
        Ref d(saveStep(step(1, directFt())));
        plist::addToDictionary(d.get(), "shuffling", plist::createString(text));
        EXPECT_EQ(std::get<FourierTransformStep>(loadStep(d.get())->data).shuffling, expected)
            << text;
    }
}

TEST(FourierTransformRecord, MissingRequiredKeyMakesTheStepMalformed) {
    for (const char* key : {"FT size", "conjugate", "quadrature", "real FT", "hypercomplex",
                            "magnitude", "Use Linear Prediction", "apply weights"}) {
        StepLoad outcome = StepLoad::Loaded;
        EXPECT_FALSE(loadStep(without(step(2, directFt()), key).get(), &outcome)) << key;
        EXPECT_EQ(outcome, StepLoad::Malformed) << key;
    }
    // "subtract D.C." may be missing: then it is off.
    FourierTransformStep ft = directFt();
    ft.flags |= ft_flags::kSubtractDc;
    const auto back = loadStep(without(step(2, ft), "subtract D.C.").get());
    ASSERT_TRUE(back);
    EXPECT_FALSE(std::get<FourierTransformStep>(back->data).flags & ft_flags::kSubtractDc);
    EXPECT_TRUE(std::get<FourierTransformStep>(throughText(step(2, ft))->data).flags &
                ft_flags::kSubtractDc);
}

TEST(LinearPredictionRecord, BurgIsSavedButReloadsAsFast) {
    LinearPredictionStep lp;
    lp.coefficients = {16, 8, 0};
    lp.equations = {128, 64, 0};
    lp.firstPredicted = {257, 1, 0};
    lp.lastPredicted = {512, 4, 0};
    lp.method = 3;
    Ref saved(saveStep(step(1, lp)));
    const plist::Value* a =
        plist::lookUp(saved.get(), "coeff. - equations - first and last predicted pts.");
    ASSERT_TRUE(a);
    std::vector<int32_t> values;
    for (const plist::Value* v : a->items) values.push_back(v->integer);
    EXPECT_EQ(values, (std::vector<int32_t>{16, 128, 257, 512, 8, 64, 1, 4, 3}));

    const auto back = throughText(step(1, lp));
    const auto& got = std::get<LinearPredictionStep>(back->data);
    EXPECT_EQ(got.method, 0);
    EXPECT_EQ(got.coefficients, lp.coefficients);
    EXPECT_EQ(got.lastPredicted, lp.lastPredicted);

    lp.method = 2;
    EXPECT_EQ(std::get<LinearPredictionStep>(throughText(step(1, lp))->data).method, 2);
    lp.method = 0;
    Ref fast(saveStep(step(1, lp)));
    EXPECT_EQ(plist::lookUp(fast.get(), "coeff. - equations - first and last predicted pts.")
                  ->items.size(),
              8u);

    lp.coefficients = {0, 0, 0};
    EXPECT_EQ(saveStep(step(1, lp)), nullptr);
}

TEST(BaseplaneRecord, MovingAverageComesBackAsAPowerOfTwo) {
    BaseplaneStep b{.priority = 2, .function = 1, .order = 7};
    for (auto [width, saved, loaded] :
         {std::tuple{100, 100, 128}, std::tuple{200, 127, 128}, std::tuple{64, 64, 64},
          std::tuple{1, 1, 1}, std::tuple{0, 0, 1}}) {
        b.movingAverage = static_cast<int16_t>(width);
        Ref d(saveStep(step(2, b)));
        EXPECT_EQ(plist::integerOf(plist::lookUp(d.get(), "moving average filter")), saved);
        const auto back = throughText(step(2, b));
        EXPECT_EQ(std::get<BaseplaneStep>(back->data).movingAverage, loaded) << width;
    }
}

TEST(BaseplaneRecord, FunctionAndRestrictionFollowTheKeys) {
    Ref open(saveStep(step(1, BaseplaneStep{.function = 0, .order = 3, .movingAverage = 32})));
    EXPECT_EQ(*plist::textOf(plist::lookUp(open.get(), "function")), "Whittaker");
    EXPECT_EQ(plist::lookUp(open.get(), "from ppm"), nullptr);

    // No "function" key, or one not beginning with W, gives the polynomial.
    Ref d(plist::createDictionary());
    plist::addToDictionary(d.get(), "! Processing", plist::createString("Baseplane Correction"));
    plist::addToDictionary(d.get(), "! f-index", plist::createInteger(1));
    plist::addToDictionary(d.get(), "from ppm", plist::createInteger(5));
    auto loaded = std::get<BaseplaneStep>(loadStep(d.get())->data);
    EXPECT_EQ(loaded.function, 1);
    EXPECT_EQ(loaded.restricted, 1);
    EXPECT_EQ(loaded.fromPpm, 5.0f);
    plist::addToDictionary(d.get(), "function", plist::createString("whittaker"));
    EXPECT_EQ(std::get<BaseplaneStep>(loadStep(d.get())->data).function, 1);
}

TEST(StepDispatch, FirstLetterChoosesTheKindAndUnknownNamesAreSkipped) {
    auto named = [](const char* name) {
        Ref d(plist::createDictionary());
        plist::addToDictionary(d.get(), "! Processing", plist::createString(name));
        plist::addToDictionary(d.get(), "! f-index", plist::createInteger(2));
        StepLoad outcome;
        auto s = loadStep(d.get(), &outcome);
        return std::pair{s, outcome};
    };
    EXPECT_EQ(named("Binning, really").first->kind(), StepKind::Baseplane);
    EXPECT_EQ(named("Data Reduction").first->kind(), StepKind::DataReduction);
    EXPECT_EQ(named("Polynomial").first->kind(), StepKind::Polynomial);
    EXPECT_EQ(named("QR-DOSY").first->kind(), StepKind::QrDosy);
    for (const char* unknown : {"Symmetrization", "fourier transform", ""}) {
        auto [s, outcome] = named(unknown);
        EXPECT_FALSE(s);
        EXPECT_EQ(outcome, StepLoad::Skipped) << unknown;
    }
    // A Fourier transform without its keys is malformed, not skipped.
    EXPECT_EQ(named("Fourier Transform").second, StepLoad::Malformed);
}

// Whatever a kind saves comes back: saved again after the round trip, the text is the same.
TEST(StepRecords, OtherKindsReloadEqual) {
    for (const ProcessingStep& s :
         {step(1, BaseplaneStep{.function = 0, .order = 3, .movingAverage = 32}),
          step(
              1,
              BaseplaneStep{.fromPpm = 9.5f, .toPpm = -0.5f, .restricted = 1, .movingAverage = 16}),
          step(2, PolynomialStep{2, {1.5, -0.25, 0.001}}),
          step(2, HighPassFilterStep{{4.7f, 1.25f}, 3}),
          step(2, DataReductionStep{10.0f, -1.0f, 0.04f, 16}),
          step(1, MonoExponentialFitStep{1e-11f, 1e-8f, 25.0f, 0.5f, 8.5f, 16, 3, 2, true}),
          step(1, QrDosyStep{{2.1e-10f, 5e-10f}, 30.0f, 0.2f, 9.8f, 1, 7, 5})}) {
        const auto back = throughText(s);
        ASSERT_TRUE(back);
        EXPECT_EQ(back->kind(), s.kind());
        EXPECT_EQ(savedText(*back), savedText(s));
    }
    EXPECT_EQ(saveStep(step(2, PolynomialStep{-1, {}})), nullptr);
}

TEST(StepRecords, ListSkipsUnknownStepsAndRefusesMalformedOnes) {
    Ref list(saveSteps(
        {step(2, directFt()), step(2, PolynomialStep{-1, {}}), step(2, BaseplaneStep{})}));
    ASSERT_EQ(list->items.size(), 2u);
    Ref unknown(plist::createDictionary());
    plist::addToDictionary(unknown.get(), "! Processing", plist::createString("Tilt"));
    plist::appendToArray(list.get(), unknown.take());
    auto steps = loadSteps(list.get());
    ASSERT_TRUE(steps);
    ASSERT_EQ(steps->size(), 2u);
    EXPECT_EQ((*steps)[0].tag(), 0x20002u);
    EXPECT_EQ((*steps)[1].tag(), 0x20004u);

    Ref bad(plist::createDictionary());
    plist::addToDictionary(bad.get(), "! Processing", plist::createString("Linear Prediction"));
    plist::addToDictionary(bad.get(), "! f-index", plist::createInteger(4));
    plist::appendToArray(list.get(), bad.take());
    EXPECT_FALSE(loadSteps(list.get()));
    EXPECT_FALSE(loadSteps(nullptr));
}

}  // namespace
}  // namespace zolt
