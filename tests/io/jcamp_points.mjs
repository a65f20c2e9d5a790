// Prints what jcampconverter decodes from a JCAMP-DX file, for the reader's tests to compare:
// "spectrum N" and N lines "x y" per 1-D page; "plane ROWS COLUMNS" and ROWS lines of values
// for a 2-D spectrum (rows by ascending indirect, columns by ascending direct frequency).
// usage: node jcamp_points.mjs NODE_MODULES FILE
import {readFileSync} from 'fs';
import {pathToFileURL} from 'url';

const [modules, file] = process.argv.slice(2);
const {convert} =
    await import(pathToFileURL(`${modules}/jcampconverter/dist/jcampconverter.js`).href);
const result = convert(readFileSync(file, 'latin1'), {noContour: true});
const lines = [];
for (const entry of result.flatten) {
    for (const s of entry.spectra ?? []) {
        lines.push(`spectrum ${s.data.y.length}`);
        for (let i = 0; i < s.data.y.length; i++) lines.push(`${s.data.x[i]} ${s.data.y[i]}`);
    }
    const z = entry.minMax?.z;
    if (z) {
        lines.push(`plane ${z.length} ${z[0].length}`);
        for (const row of z) lines.push(row.join(' '));
    }
}
process.stdout.write(lines.join('\n') + '\n');
