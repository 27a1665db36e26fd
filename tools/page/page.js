// The page: takes files, lets the worker examine them, and shows its reports. All texts of a file are untrusted: they
// become text nodes, never markup.

const find = (selector, within = document) => within.querySelector(selector);
const explanations = JSON.parse(find('#explanations').textContent);
const program = new Blob([find('#worker').textContent], {type: 'text/javascript'});
const input = find('input[type=file]');
const results = find('#results');
const viewer = find('#viewer');
let worker = null;
let imageUrls = [];

// An element with properties, and attributes where a name has a hyphen. Children that are null are left out.
function make(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    name.includes('-') ? element.setAttribute(name, value) : element[name] = value;
  }
  element.append(...children.filter((child) => child !== null));
  return element;
}

const list = (items, properties) => make('ul', properties, ...items.map((item) => make('li', {}, item)));
const clone = (id) => find(`#${id}`).content.firstElementChild.cloneNode(true);
const bytesText = (size) => `${size.toLocaleString('en')} bytes`;
const counted = (count, noun) => `${count} ${noun}${count === 1 ? '' : 's'}`;
const code = (text) => make('span', {className: 'code'}, text);

// Fills a list of terms with the rows that have a value.
function fill(terms, rows) {
  for (const [term, value] of rows) {
    if (value !== null && value !== undefined && value.length !== 0) {
      terms.append(make('dt', {}, term), make('dd', {}, Array.isArray(value) ? list(value) : value));
    }
  }
}

function say(state, text, share) {
  document.body.dataset.state = state;
  find('#status').textContent = text;
  const progress = find('#progress');
  progress.hidden = state !== 'working';
  share === undefined ? progress.removeAttribute('value') : progress.value = share;
}

// A worker that is still at work on other files ends.
function open(files) {
  worker?.terminate();
  results.replaceChildren();
  imageUrls.forEach((url) => URL.revokeObjectURL(url));
  imageUrls = [];
  if (viewer.open) viewer.close();
  if (files.length === 0) return;
  const end = (state, text) => {
    worker.terminate();
    say(state, text);
  };
  say('working', 'Starting');
  const url = URL.createObjectURL(program);
  worker = new Worker(url);
  worker.onmessage = ({data}) => {
    if (data.stage) say('working', data.stage, data.share);
    if (data.failure) end('failed', data.failure);
    if (data.reports) {
      showReports(files, data.reports);
      end('done', `Examined ${files.map((file) => file.name).join(' and ')}.`);
    }
  };
  worker.onerror = (event) => {
    event.preventDefault();
    end('failed', 'This browser ended the examination. The file may need more memory than the browser has for it.');
  };
  files.length > 2 ? end('failed', 'This page takes one file, or two to compare.') : worker.postMessage(files);
  URL.revokeObjectURL(url);
}

function showReports(files, reports) {
  if (files.length === 2) results.append(comparison(files, reports[2]));
  files.forEach((file, i) => results.append(report(file, reports[i])));
}

// The signatures of a file as text with what was found about each.
function signatures(all) {
  return all.map(({signer, nested, timestamps, fault}) => make('span', {},
    `${signer ?? 'a signer without a name'}${nested ? ' (nested)' : ''}, `,
    ...(timestamps ?? []).map((stamp) => `${stamp.time ?? 'at an unreadable time'} (${stamp.kind}${
      stamp.fault ? `, BROKEN: ${stamp.fault}` : ''}), `),
    make('span', {className: fault ? 'bad' : 'good'}, fault ? `BROKEN: ${fault}` : 'the signature holds')));
}

function verdict(findings) {
  const errors = findings.filter(({severity}) => severity === 'error').length;
  const warnings = findings.length - errors;
  if (findings.length === 0) {
    return {level: 'good', text: 'In order', meaning: 'No check found anything wrong with this file.'};
  }
  const text = [errors && counted(errors, 'error'), warnings && counted(warnings, 'warning')].filter(Boolean).join(', ');
  return errors ? {level: 'bad', text, meaning: 'With an error, the installer fails or installs something wrong.'} :
    {level: 'warn', text, meaning: 'No run fails because of a warning, but somebody should look at it.'};
}

const findingText = ({where, what}) => (where ? `${where}: ` : '') + what;

function findingItem(finding) {
  const [meaning, mending] = explanations[finding.code] ?? [];
  return make('li', {},
    make('p', {}, make('span', {className: finding.severity === 'error' ? 'bad' : 'warn'}, `${finding.severity}: `),
      findingText(finding), ' ', make('span', {className: 'code muted'}, `[${finding.code}]`)),
    meaning ? make('p', {className: 'muted'}, meaning) : null,
    mending ? make('p', {}, `What to do: ${mending}`) : null);
}

function ticket(file, reports, findings, contents) {
  const lines = findings.flatMap((finding) => [`  ${finding.severity}: ${findingText(finding)} [${finding.code}]`,
    ...(explanations[finding.code] ?? []).map((text) => `      ${text}`)]);
  return [file.name, `${bytesText(file.size)}, SHA-256 ${contents?.file?.sha256 ?? reports.sha256}`, '',
    `Verdict: ${verdict(findings).text}`, ...lines, '', reports.listText ?? reports.listJsonFault].join('\n');
}

function report(file, reports) {
  const article = clone('report');
  const contents = JSON.parse(reports.listJson);
  const {findings, signatures: verified} = JSON.parse(reports.verifyJson);
  const signed = contents ? contents.signatures : verified;
  const {level, text, meaning} = verdict(findings);
  article.setAttribute('aria-label', file.name);
  find('.name', article).textContent = file.name;
  find('.badge', article).textContent = text;
  find('.badge', article).classList.add(level);
  const program = contents?.program;
  fill(find('.file', article), [
    ['Name', file.name],
    ['Kind', contents ? (contents.installer ? 'Installer' : 'Payload archive') : null],
    ['Size', bytesText(file.size)],
    ['SHA-256', code(contents?.file?.sha256 ?? reports.sha256)],
    ['Version', contents?.version],
    ['Program', program ? make('span', {}, 'fingerprint ', code(program.fingerprint)) : null],
    ['Wizard texts', program ? (program.textsKnown ? 'the texts that this page knows' :
      make('span', {className: 'warn'}, 'not the texts that this page knows: the wizard can differ from the drawing')) : null],
    ['Signed by', signed ? signatures(signed) : signed === null ? 'nobody: the file has no signature' : null]]);
  find('.signature-note', article).textContent =
    'Whether Windows trusts a signer, by certificate chain, date and revocation, is not judged.';
  find('.verdict', article).append(make('div', {className: `banner ${level}`}, text, make('p', {}, meaning)),
    make('ul', {className: 'findings'}, ...findings.map(findingItem)));
  if (contents) {
    showDriver(article, contents);
    find('.files', article).append(filesTable(file, contents.files));
    if (contents.installer || contents.package) showWizard(article, file, contents, reports);
    else find('.wizard', article).remove();
  } else {
    article.querySelectorAll('.content').forEach((section) => section.remove());
    find('.verdict', article).append(make('p', {className: 'note'},
      'The structure of this file is not sound, so its contents cannot be shown.'));
  }
  setCopy(find('[data-action=copy]', article), ticket(file, reports, findings, contents));
  find('[data-action=print]', article).onclick = () => print();
  return article;
}

function setCopy(button, text) {
  button.onclick = async () => {
    try {
      await navigator.clipboard.writeText(text);
      find('#status').textContent = 'Copied.';
    } catch {
      view('Copy this text', make('pre', {tabIndex: 0}, text));
    }
  };
}

// "02/13/2014,1.0.42.0" as date and version. Any other value is the version as it is.
function driverVersion(text) {
  const [, month, day, year, version] = /^(\d\d?)\/(\d\d?)\/(\d{4}),([\d.]+)$/.exec(text) ?? [];
  const date = new Date(Date.UTC(year, month - 1, day));
  if (date.getUTCMonth() !== month - 1) return [['Version', text]];
  const words = date.toLocaleDateString('en-GB', {dateStyle: 'long', timeZone: 'UTC'});
  return [['Version', version], ['Date', `${words} (${text.split(',')[0]} in the INF)`]];
}

function showDriver(article, {package: driver, files}) {
  const terms = find('.driver', article);
  if (!driver) {
    fill(terms, [['INF', 'none, so this file carries no driver package']]);
    return;
  }
  const named = (isIn) => files.filter(({inCatalog}) => inCatalog === isIn).map(({name}) => name).join(', ');
  fill(terms, [
    ['INF', driver.inf],
    ...driverVersion(driver.version),
    ['Display name', driver.displayName],
    ['Device family', driver.family],
    ['Devices', driver.devices?.join(', ')],
    ['Devices (German)', `${driver.germanDevices}` === `${driver.devices}` ? null : driver.germanDevices?.join(', ')],
    ...(driver.platforms ?? []).map(({platform, catalog, windows, hardwareIds}) => [
      {x86: 'x86 (32-bit)', amd64: 'amd64 (64-bit)'}[platform] ?? platform,
      [`Catalog: ${catalog ?? 'none'}`, `Windows versions: ${windows?.join(', ') || 'none named'}`,
        hardwareIds?.length ? make('details', {}, make('summary', {}, counted(hardwareIds.length, 'hardware ID')),
          list(hardwareIds.map(code))) : 'No hardware IDs']]),
    ...files.filter(({catalog}) => catalog).map(({name, catalog}) => ['Catalog', catalog.fault ?
      make('span', {className: 'bad'}, `${name} cannot be read: ${catalog.fault}`) :
      `${name}, version ${catalog.version}, ${counted(catalog.members, 'member')}${
        catalog.windows?.length ? `, for ${catalog.windows.join(', ')}` : ''}`]),
    ['Covered by it', named(true)],
    ['Not covered', named(false) && make('span', {className: 'bad'}, named(false))]]);
}

// The columns of the table of files: heading, value to sort by, cell.
const covered = (inCatalog) => inCatalog === null ? '' : inCatalog ? 'yes' : 'NO';
const signers = (file) => (file.signatures ?? []).map(({signer, fault}) => (signer ?? 'no name') + (fault ? ' (BROKEN)' : '')).join(', ');
const columns = [
  ['Archive', (file) => file.archive],
  ['Name', (file) => file.name],
  ['Size', (file) => file.size, (file) => file.size.toLocaleString('en')],
  ['Version', (file) => file.version ?? ''],
  ['Kind', (file) => file.kind],
  ['Signer', signers],
  ['In catalog', (file) => covered(file.inCatalog)],
];

function filesTable(file, items) {
  const roled = (tag, role, ...rest) => make(tag, {role, ...rest[0]}, ...rest.slice(1));
  const rows = items.map((item) => ({item, row: roled('tr', 'row', {}, ...columns.map(([heading, value, shown]) =>
    roled('td', 'cell', {'data-label': heading, className: (heading === 'Size' ? 'number' : '') +
      (/BROKEN|^NO$/.test(value(item)) && heading !== 'Name' ? ' bad' : '')}, `${(shown ?? value)(item)}`)),
    roled('td', 'cell', {className: 'actions'},
      make('button', {className: 'small', 'aria-label': `View ${item.name}`, onclick: () => viewItem(file, item)}, 'View'),
      make('button', {className: 'small', 'aria-label': `Save ${item.name}`, onclick: () => save(file, item)}, 'Save')))}));
  const body = roled('tbody', 'rowgroup', {}, ...rows.map(({row}) => row));
  const headings = columns.map(([heading, value]) => {
    const cell = roled('th', 'columnheader', {scope: 'col', className: heading === 'Size' ? 'number' : ''},
      make('button', {onclick: () => {
        const factor = cell.ariaSort === 'ascending' ? -1 : 1;
        headings.forEach((other) => other.removeAttribute('aria-sort'));
        cell.setAttribute('aria-sort', factor === 1 ? 'ascending' : 'descending');
        const compare = (a, b) => typeof a === 'number' ? a - b : a.localeCompare(b, 'en', {numeric: true});
        rows.sort((a, b) => factor * compare(value(a.item), value(b.item)));
        body.append(...rows.map(({row}) => row));
      }}, heading));
    return cell;
  });
  const last = roled('th', 'columnheader', {scope: 'col', 'aria-label': 'Actions'});
  return roled('table', 'table', {}, roled('thead', 'rowgroup', {}, roled('tr', 'row', {}, ...headings, last)), body);
}

const part = (file, item, type) => file.slice(item.fileOffset, item.fileOffset + item.size, type);
const imageOf = (file, item) => {
  imageUrls.push(URL.createObjectURL(part(file, item, 'image/bmp')));
  return make('img', {src: imageUrls.at(-1), alt: item.name});
};

function save(file, item) {
  const url = URL.createObjectURL(part(file, item, 'application/octet-stream'));
  make('a', {href: url, download: item.name}).click();
  setTimeout(() => URL.revokeObjectURL(url), 60000);
}

function view(title, ...content) {
  find('#viewer-title').textContent = title;
  find('div', viewer).replaceChildren(...content);
  viewer.showModal();
  find('#viewer-title').focus();
}

// A text by its kind, with the characters that change the direction of the text around them made visible.
const kTextLimit = 2 ** 20;
async function textOf(file, item) {
  const encoding = /UTF-16 text, little/.test(item.kind) ? 'utf-16le' : /UTF-16 text, big/.test(item.kind) ? 'utf-16be' :
    /^8-bit/.test(item.kind) ? 'windows-1252' : 'utf-8';
  const bytes = await part(file, item).slice(0, kTextLimit).arrayBuffer();
  return new TextDecoder(encoding).decode(bytes).replace(/[\u061c\u200e\u200f\u202a-\u202e\u2066-\u2069]/g,
    (character) => `[U+${character.charCodeAt(0).toString(16).toUpperCase().padStart(4, '0')}]`);
}

async function viewItem(file, item) {
  const terms = make('dl');
  fill(terms, [['Kind', item.kind], ['Size', bytesText(item.size)], ['Version', item.version],
    ['Description', item.description], ['Company', item.company], ['SHA-256', code(item.sha256)],
    ['Signed by', item.signatures && signatures(item.signatures)], ['In catalog', covered(item.inCatalog)]]);
  const content = [terms];
  if (item.kind.startsWith('Windows bitmap')) content.push(imageOf(file, item));
  if (item.kind.includes(' text')) {
    const text = await textOf(file, item).catch(() => 'The file cannot be read any more.');
    if (item.size > kTextLimit) content.push(make('p', {className: 'note'}, 'This is the first megabyte of the text.'));
    content.push(make('pre', {tabIndex: 0, 'aria-label': `Text of ${item.name}`}, text));
  }
  view(item.name, ...content);
}

// The languages by Windows' identifiers, for their names.
const languageTags = {'0x0401': 'ar-SA', '0x0804': 'zh-Hans', '0x0404': 'zh-Hant', '0x0405': 'cs', '0x0406': 'da',
  '0x0407': 'de', '0x0408': 'el', '0x0409': 'en-US', '0x0c0a': 'es', '0x040b': 'fi', '0x040c': 'fr', '0x040d': 'he',
  '0x040e': 'hu', '0x0410': 'it', '0x0411': 'ja', '0x0412': 'ko', '0x0414': 'nb', '0x0413': 'nl', '0x0415': 'pl',
  '0x0416': 'pt-BR', '0x0816': 'pt-PT', '0x0419': 'ru', '0x041d': 'sv', '0x041f': 'tr', '0x0809': 'en-GB'};
const languageNames = new Intl.DisplayNames(['en'], {type: 'language', languageDisplay: 'standard'});

function showWizard(article, file, {files, program}, reports) {
  const section = find('.wizard', article);
  const drawings = find('.drawings', section);
  const [languageSelect, editionSelect] = section.querySelectorAll('select');
  const showXml = () => find('pre', section).textContent = new TextDecoder().decode(reports[editionSelect.value]);
  editionSelect.onchange = showXml;
  showXml();
  find('.note', section).textContent = 'A drawing with the texts of dpinst.xml. Windows adds buttons and hints in its own words.' +
    (reports.doubt ? ` The INF ${reports.doubt}, so the texts are a guess.` : '') +
    (program?.textsKnown === false ? ' This installer has other texts than this page, so its wizard differs.' : '');

  const parsed = new DOMParser().parseFromString(new TextDecoder().decode(reports.preview), 'text/xml');
  const languages = [...parsed.querySelectorAll('language')];
  if (find('parsererror', parsed)) {
    drawings.append(make('p', {className: 'bad'}, 'The dpinst.xml that the installer writes is not well-formed XML.'));
    languageSelect.closest('p').remove();
    return;
  }
  for (const language of languages) {
    const value = language.getAttribute('code');
    const name = languageTags[value] ? languageNames.of(languageTags[value]) : value;
    languageSelect.append(make('option', {value}, `${name} (${value})`));
  }
  const draw = async () => {
    const chosen = languages.find((language) => language.getAttribute('code') === languageSelect.value);
    const element = (name) => find(name, chosen) ?? find(`:scope > ${name}`, parsed.documentElement);
    const text = (name) => element(name)?.textContent.trim() ?? '';
    const carried = (name) => files.find((item) => item.name.toUpperCase() === name.toUpperCase());
    const watermark = carried(text('watermarkPath'));
    const licence = element('eula')?.getAttribute('path') ?? '';
    const licenceText = carried(licence) ? await textOf(file, carried(licence)).catch(() => '') : `${licence} is missing.`;
    const page = (className, ...children) => make('figure', {className: 'window', 'aria-label': `The ${className} page`},
      make('figcaption', {}, text('dpinstTitle')), make('div', {className}, ...children),
      make('div', {className: 'buttons', 'aria-hidden': true},
        ...['< Back', 'Next >', 'Cancel'].map((label) => make('span', {}, label))));
    drawings.replaceChildren(
      page('welcome', watermark?.kind.startsWith('Windows bitmap') ? imageOf(file, watermark) : null,
        make('div', {}, make('strong', {}, text('welcomeTitle')), text('welcomeIntro'))),
      page('licence', make('strong', {}, text('eulaHeaderTitle')),
        make('div', {tabIndex: 0, role: 'region', 'aria-label': 'Licence'}, licenceText),
        make('span', {}, text('eulaYesButton')), make('span', {}, text('eulaNoButton'))));
  };
  languageSelect.value = '0x0409';
  languageSelect.onchange = draw;
  draw();
}

function comparison(files, reports) {
  const article = clone('comparison');
  const [before, after] = files.map((file) => file.name);
  const groups = find('.changes', article);
  const group = (title, items) => items.length && groups.append(make('div', {}, make('h3', {}, title), list(items)));
  const changes = (all) => all.map((change) => change.what === 'content' ? 'content alone' :
    `${change.what} ${change.before ?? 'none'} \u2192 ${change.after ?? 'none'}`);
  const fileText = ({name, archive, size, kind}) => `${name}: archive ${archive}, ${bytesText(size)}, ${kind}`;
  const result = JSON.parse(reports.compareJson);
  groups.append(make('p', {}, result?.alike ? `${before} and ${after} do not differ.` : `From ${before} to ${after}:`));
  if (!result) {
    groups.append(make('p', {className: 'bad'}, `They cannot be compared: ${reports.compareJsonFault}.`));
  } else {
    group('Driver package', changes(result.package));
    group('Installer', changes(result.installer ?? []));
    group('Files removed', result.removed.map(fileText));
    group('Files added', result.added.map(fileText));
    group('Files changed', result.changed.map(({name, changes: all}) => `${name}: ${changes(all).join('; ')}`));
    // Most changes are the same in the elements of all languages.
    const runs = new Map();
    result.configuration.forEach((run) => runs.set(JSON.stringify(run), (runs.get(JSON.stringify(run)) ?? 0) + 1));
    group('dpinst.xml', [...runs].map(([run, times]) => make('div', {className: 'code'},
      times > 1 ? make('p', {className: 'muted'}, `${times} times:`) : null,
      ...['removed', 'added'].flatMap((kind) => JSON.parse(run)[kind].map((line) => make('p', {className: kind}, line))))));
  }
  find('[data-action=swap]', article).onclick = () => open([...files].reverse());
  setCopy(find('[data-action=copy]', article), `From ${before} to ${after}:\n\n${reports.compareText ?? reports.compareJsonFault}`);
  return article;
}

input.onchange = () => {
  const files = [...input.files];
  input.value = '';
  open(files);
};
addEventListener('dragover', (event) => {
  event.preventDefault();
  document.body.classList.add('dragging');
});
addEventListener('dragleave', (event) => event.relatedTarget ?? document.body.classList.remove('dragging'));
addEventListener('drop', (event) => {
  event.preventDefault();
  document.body.classList.remove('dragging');
  open([...event.dataTransfer.files]);
});
addEventListener('beforeprint', () => document.querySelectorAll('.driver details').forEach((details) => details.open = true));
say('ready', 'No file is chosen yet.');
