#pragma once
// What the tests of transforms of floating-point numbers share.

#include "numbers/big_float_support.h"
#include "numbers/transforms/big_float_transform.h"
#include "numbers/transforms/transform_bench.h"

namespace test {

using zvp::BigFloatTransformR;

using Bench = WordBench<zvp::wtype>;

/// "<class> <function>: <message>" of the exception of a transform operation that the call raises.
template <class Call>
std::string refusal(Call&& call) {
    const auto told = [](const char* type, const zvp::StringException& e) {
        return std::string(type) + " " + e.function + ": " + e.message;
    };
    try {
        call();
    } catch (const zvp::ConvolutionTooSmallException& e) {
        return told("convolution", e);
    } catch (const zvp::TransformTooSmallException& e) {
        return told("transform", e);
    } catch (const zvp::InvalidTransformException& e) {
        return told("invalid transform", e);
    } catch (const zvp::InvalidParametersException& e) {
        return told("parameters", e);
    } catch (const zvp::LimitExceededException& e) {
        return told("limit", e);
    }
    return "nothing";
}

} // namespace test
