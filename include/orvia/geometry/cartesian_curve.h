// A chain of cubics y = f(x): elevation against abscissa, banking against abscissa and the like.
#pragma once

#include <cstddef>
#include <limits>
#include <string>
#include <vector>

#include <orvia/geometry/polynomial_function.h>
#include <orvia/ruvex/elements/curves.h>
#include <orvia/vek/box.h>
#include <orvia/vek/vector.h>

namespace Orvia {

// A point of a curve to build and the slope (dy/dx) there.
struct PtInCurve {
    vek::Vector2 point;
    double slope = 0;
};

// Piece i covers [xIn(i), xOut(i)]; consecutive pieces meet at handles: handle i is the start of piece i and
// handle count the end of the last piece. The element list (Functions) holds the pieces with one reference
// each; edits made here keep it and the lookup table in step. Queries are const, allocate nothing and take
// no locks.
class CartesianCurve : public Ruvex::CartesianCurveElement {
public:
    static constexpr size_t npos = std::numeric_limits<size_t>::max();

    // A slope break (difference of dy/dx across a junction) of this or more anywhere means the curve is
    // edited as a polyline: Validate() then makes every piece straight.
    static constexpr double kLinearEditSlopeBreak = 0.01;
    // x values closer than this are the same (SetXMax).
    static constexpr double kXTolerance = 1e-12;
    // SetXMax keeps a cut piece only when it keeps more than this width (same unit as x).
    static constexpr double kMinCutWidth = 1e-5;

    // Saved as "SZCurve".
    CartesianCurve();
    // Saved under tag ("SZCurve", "BankingCurve", "SZCurvatureCurve", ...).
    explicit CartesianCurve(const std::string& tag);
    // Deep: the pieces are cloned.
    CartesianCurve(const CartesianCurve& other);
    CartesianCurve& operator=(const CartesianCurve& other);
    ~CartesianCurve() override;

    // --- Pieces -------------------------------------------------------------------------------------------
    // The curve takes one reference. False for null.
    bool AddFunction(PolynomialFunction* function);
    // Before piece index; at or beyond the count (npos): at the end.
    bool InsertFunction(PolynomialFunction* function, size_t index);
    // count pieces from first (clipped to the end); false when first is beyond the count.
    bool RemoveFunction(size_t first, size_t count);
    // Cuts piece index at x, strictly inside (xIn, xOut): both parts reproduce the cubic exactly; the second
    // is inserted after the first. False otherwise.
    bool SplitFunction(size_t index, double x);
    // Null beyond the count.
    const PolynomialFunction* GetFunction(size_t index) const;
    // Changes made through it are seen at once (call Validate() to reconnect the neighbours).
    PolynomialFunction* GetEditableFunction(size_t index);
    size_t GetFunctionCount() const { return m_pieces.size(); }
    // Pointer comparison; npos when absent.
    size_t GetFunctionIndex(const PolynomialFunction* function) const;
    // The piece holding x: the first piece before the curve, the last one after it; null when empty.
    const PolynomialFunction* GetFunctionAt(double x) const;
    // Its index, npos when empty.
    size_t GetFunctionIndexAt(double x) const;
    // Bisection over pieces [lo, hi) on [xIn, xOut]; a value on a boundary belongs to the piece met first.
    // npos when the range is empty (hi clipped to the count).
    size_t GetFunctionAtIdx(double x, size_t lo, size_t hi) const;
    // Rebuilds the lookup table from the element list: call it after editing the list directly.
    void UpdateFunctionVector();

    // --- Values (the piece holding x, extrapolated by the end pieces outside the covered range) ----------
    // y; 0 when empty.
    double GetValue(double x) const;
    // Slope angle atan(dy/dx), radians; 0 when empty.
    double GetSlope(double x) const;
    // Signed curvature of the graph (1/unit of y); 0 when empty.
    double GetCurvature(double x) const;
    // The three at once; the outputs are left untouched when empty.
    void GetData(double x, double& value, double& slope, double& curvature) const;
    // First xIn, last xOut; 0 when empty.
    double GetXMin() const;
    double GetXMax() const;
    // Ends the curve at x: the last piece is stretched (x beyond the end) or the piece holding x is cut
    // there (dropped when less than kMinCutWidth of it would remain) and the pieces after it removed. The
    // out value of the cut piece is kept, so the cut is a refit, not a sample.
    void SetXMax(double x);
    // Invert(), SetXMax(x), Invert(): on a curve over [0, b] keeps [b - x, b], re-based to [0, x].
    void SetXMin(double x);
    // Sum of the pieces' graph lengths over their own ranges.
    double GetCurveLength() const;
    // Union of the pieces' boxes; empty when there is no piece.
    vek::Box2 GetBoundingBox() const;

    // --- Handles ------------------------------------------------------------------------------------------
    // Pieces + 1, 0 when empty.
    size_t GetHandleCount() const { return m_pieces.empty() ? 0 : m_pieces.size() + 1; }
    // In point of piece i, out point of the last piece for i = count; (0, 0) beyond.
    vek::Vector2 GetHandlePos(size_t i) const;
    // dy/dx arriving at handle i (piece i-1's out derivative; piece 0's in derivative for i = 0).
    double GetHandlePrevSlope(size_t i) const;
    // dy/dx leaving handle i (piece i's in derivative; the last piece's out derivative for i = count).
    double GetHandleNextSlope(size_t i) const;
    // Merges the pieces around an inner handle: piece i-1 is refitted from its start to piece i's end, piece
    // i is removed. False for the first and last handles and beyond.
    bool RemoveHandle(size_t i);
    // Piece index gets a new start (or end) point and derivative dy/dx there, and is refitted; its
    // neighbour is not touched (Validate() reconnects a moved start to the previous piece's end, so move
    // that end first). False beyond the count.
    bool SetFunctionStart(size_t index, const vek::Vector2& point, double derivative);
    bool SetFunctionEnd(size_t index, const vek::Vector2& point, double derivative);
    // The same, the piece becoming the straight chord between its points.
    bool SetLinearFunctionStart(size_t index, const vek::Vector2& point);
    bool SetLinearFunctionEnd(size_t index, const vek::Vector2& point);

    // --- Whole-curve edits --------------------------------------------------------------------------------
    // Every in and out point moves by v; the derivatives are kept.
    void Offset(const vek::Vector2& v);
    // Read backwards: x' = xMax - x over [0, xMax - xMin] (for a curve starting at 0), y kept, slopes
    // negated.
    void Invert();
    // y and slopes negated.
    void InvertY();
    // Read backwards and negated: x' = xMax - x, y' = -y, slopes kept.
    void InvertYX();
    // Shifts other by (GetXMax(), GetValue(GetXMax())) (other is modified: a curve starting at (0, 0) then
    // continues this one) and appends its pieces, which both curves then share. Nothing for null or itself.
    void AppEnd(CartesianCurve* other);
    // One piece per chord of points (at least 2, else false and nothing changes); the slope at an inner point
    // is the tangent of the mean of the chord angles around it, at an end that of the end chord.
    bool MakeFrom(const std::vector<vek::Vector2>& points);
    // One piece per consecutive pair with the records' points and slopes (at least 2, else false).
    bool MakeFrom(const std::vector<PtInCurve>& points);

    // Reconnects the pieces: each piece after the first is turned the right way, starts at its predecessor's
    // end and (outside linear edit mode) shares with it the chord-length-weighted mean of the two slopes
    // there; in linear edit mode every piece becomes its chord. Pieces of no width are then removed while
    // more than one remains. The edit mode is detected on the first run (DetectEditMode()).
    void Validate();
    // Linear edit mode when some junction has a slope break of kLinearEditSlopeBreak or more; the mode then
    // counts as detected.
    void DetectEditMode();
    bool GetIsLinearEditMode() const { return m_linearEditMode; }
    bool GetIsEditModeDetected() const { return m_editModeDetected; }
    // Sets the mode (it then counts as detected).
    void SetLinearEditMode(bool linear);

    // A deep copy under the same tag, count 0: the caller owns it.
    CartesianCurve* Clone() const;
    // Clones of other's pieces and its edit mode (the tag is kept). Nothing for null or itself.
    void CopyFrom(const CartesianCurve* other);
    // No piece; the edit mode is to be detected again.
    void Clear();

    // Reads the pieces; records that are not PolynomialFunction objects (a document read without the
    // library's factory) are replaced by PolynomialFunctions holding the same values. False only when the
    // record's reader fails.
    bool LoadFromXMLElement(Ruvex::IDOMElement* element, Ruvex::IDOMParser* parser) override;

private:
    // Replaces the list with clones of list.
    void AssignClones(const std::vector<Ruvex::CountedPtr<Ruvex::PolynomialFunctionElement>>& list);

    std::vector<PolynomialFunction*> m_pieces;  // borrowed: the element list holds the references
    bool m_editModeDetected = false;
    bool m_linearEditMode = false;
};

}  // namespace Orvia
