-- Processes the FID of the front document as a spectroscopist would by hand, then reports
-- the tallest line and where the processed spectrum lies.
fill(32768)
weight(0.3)
wft()
aph()
poly(7, 64)
local t = copy()
local best, at = -math.huge, 1
for i = 1, #t do
  if t[i] > best then best, at = t[i], i end
end
local x = getf("x")
local ppm = x.start + x.width * (1 - (at - 0.5) / #t)
print(string.format("%d points from %.3f to %.3f ppm; tallest line at %.3f ppm", #t,
  x.start + x.width, x.start, ppm))
