-- autoexec.lua: the start-up script.
-- Zolt runs it on every FID it reads while "Automatic Processing" is on.
-- Edit it for your spectrometer and for the compounds you usually analyse:
-- every command of the console can be used here (its "?" button lists them).
-- It needs Zolt 0.1 or later.

forall( false )   -- the new document alone

local dimensions, inTimeDomain = numdim( )
if inTimeDomain < dimensions then
  return          -- already processed
end

if dimensions == 1 then
  local x = getf "x"
  if x.mass == 1 then
    -- proton: zero-fill to twice the acquired size, transform, phase, flatten
    fill( 2 * x.size )
    wft( true, true )
    aph( true )
    poly( 7, 64 )
    ups( )
    -- integrate; too few regions means the threshold was too coarse
    acut( 35, 0.02, 100 )
    if intreg( ) < 5 then
      delint( )
      acut( 5, 0.02, 200 )
    end
    normi( )
    exact( )
    -- reference on the residual signal of the solvent
    local name = solvent( ) or ""
    local upper = string.upper( name )
    if name == "CDCl3" then
      refer( 7.26, 1 )
    elseif string.sub( upper, 1, 4 ) == "DMSO" then
      refer( 2.50, 1 )
    elseif string.sub( upper, 1, 6 ) == "ACETON" then
      refer( 2.05, 1 )
    end
  else
    -- other nuclei: broaden, transform, phase on the tallest peaks
    weight( 1 )
    wft( true, true )
    magn( true )
    ups( )
    local positions = { }
    for i = 1, peak( ) do
      positions[ i ] = ( peak( i ) )
    end
    magn( false )
    mark( unpack( positions ) )
    aph( )
    mark( )
    ups( )
  end
elseif dimensions == 2 then
  wft( true, true )
  local _, left = numdim( )
  if left == 1 then
    wft( true, true, true )
  end
  aph( )
  abc( )
  bidi "c"        -- contours; bidi "w" draws gradient contours
end
-- three-dimensional data are left for manual processing
