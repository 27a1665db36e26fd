// The page: takes files, lets the worker examine them, and shows its reports. All texts of a file are untrusted: they
// become text nodes, never markup.

const find = (selector, within = document) => within.querySelector(selector);
const explanations = JSON.parse(find('#explanations').textContent);
const workerUrl = URL.createObjectURL(new Blob([find('#worker').textContent], {type: 'text/javascript'}));
const input = find('input[type=file]');
const results = find('#results');
const viewer = find('#viewer');
let worker = null;

// An element with properties, and attributes where a name has a hyphen. Children that are null are left out.
function make(tag, properties = {}, ...children) {
  const element = document.createElement(tag);
  for (const [name, value] of Object.entries(properties)) {
    name.includes('-') ? element.setAttribute(name, value) : element[name] = value;
  }
  element.append(...children.filter((child) => child !== null));
  return element;
}

const list = (items) => make('ul', {}, ...items.map((item) => make('li', {}, item)));
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
  viewer.close();
  if (files.length === 0) return;
  const end = (state, text) => {
    worker.terminate();
    say(state, text);
  };
  say('working', 'Starting');
  worker = new Worker(workerUrl);
  worker.onmessage = ({data}) => {
    if (data.stage) say('working', data.stage, data.share);
    if (data.failure) end('failed', data.failure);
    if (data.reports) {
      if (files.length === 2) results.append(comparison(files, data.reports[2]));
      results.append(...files.map((file, i) => report(file, data.reports[i])));
      end('done', `Examined ${files.map((file) => file.name).join(' and ')}.`);
    }
  };
  worker.onerror = () => end('failed', 'This browser ended the examination, perhaps because its memory is full.');
  files.length > 2 ? end('failed', 'This page takes one file, or two to compare.') : worker.postMessage(files);
}

// The signatures of a file as text with what was found about each.
function signatures(all) {
  return all.map(({signer, certificate, nested, timestamps, fault}) => make('span', {},
    `${signer ?? 'a signer without a name'}${nested ? ' (nested)' : ''}, certificate `, code(certificate ?? 'none'),
    ...(timestamps ?? []).map((stamp) => `, ${stamp.time ?? 'at an unreadable time'} (${stamp.kind}${
      stamp.fault ? `, BROKEN: ${stamp.fault}` : ''})`),
    ', ', make('span', {className: fault ? 'bad' : 'good'}, fault ? `BROKEN: ${fault}` : 'the signature holds')));
}

function verdict(findings) {
  const errors = findings.filter(({severity}) => severity === 'error').length;
  const warnings = findings.length - errors;
  if (findings.length === 0) {
    return {level: 'good', text: 'In order', meaning: 'No check found anything wrong with this file.'};
  }
  const counts = [[errors, 'error'], [warnings, 'warning']].filter(([count]) => count > 0);
  const text = counts.map(([count, noun]) => counted(count, noun)).join(', ');
  return errors ? {level: 'bad', text, meaning: 'With an error, the installer fails or installs something wrong.'} :
    {level: 'warn', text, meaning: 'No run fails because of a warning, but somebody should look at it.'};
}

const findingText = ({where, what}) => (where ? `${where}: ` : '') + what;

function findingItem(finding) {
  const [meaning, mending] = explanations[finding.code] ?? [];
  return make('div', {className: 'finding'},
    make('p', {}, make('span', {className: finding.severity === 'error' ? 'bad' : 'warn'}, `${finding.severity}: `),
      findingText(finding), ' ', make('span', {className: 'code muted'}, `[${finding.code}]`)),
    meaning ? make('p', {className: 'muted'}, meaning) : null,
    mending ? make('p', {}, `What to do: ${mending}`) : null);
}

function ticket(file, reports, findings, contents) {
  const lines = findings.flatMap((finding) => [`  ${finding.severity}: ${findingText(finding)} [${finding.code}]`,
    ...(explanations[finding.code] ?? []).map((text) => `      ${text}`)]);
  return [`${file.name}, ${bytesText(file.size)}`, `SHA-256 ${contents?.file.sha256 ?? reports.sha256}`, '',
    `Verdict: ${verdict(findings).text}`, ...lines, '', reports.listText ?? reports.listJsonFault].join('\n');
}

const kRowLimit = 1000;
function report(file, reports) {
  const article = clone('report');
  const contents = JSON.parse(reports.listJson);
  const {file: name, findings, signatures: verified} = JSON.parse(reports.verifyJson);
  const signed = contents ? contents.signatures : verified;
  const {level, text, meaning} = verdict(findings);
  find('.name', article).textContent = name;
  find('.badge', article).textContent = text;
  find('.badge', article).classList.add(level);
  const program = contents?.program;
  fill(find('.file', article), [
    ['Name', name],
    ['Kind', contents ? (contents.installer ? 'Installer' : 'Payload archive') : null],
    ['Size', bytesText(file.size)],
    ['SHA-256', code(contents?.file.sha256 ?? reports.sha256)],
    ['Version', contents?.version],
    ['Program', program && make('span', {}, 'fingerprint ', code(program.fingerprint))],
    ['Wizard texts', program && (program.textsKnown ? 'the texts that this page knows' :
      make('span', {className: 'warn'}, 'other texts than this page knows: devices and wizard below are a guess'))],
    ['Signed by', signed ? signatures(signed) : signed === null ? 'nobody: the file has no signature' : null]]);
  find('.verdict', article).append(make('div', {className: `banner ${level}`}, text, make('p', {}, meaning)),
    ...findings.map(findingItem));
  if (contents) {
    showDriver(article, contents);
    find('.files', article).append(filesTable(file, contents.files.slice(0, kRowLimit)));
    find('.more', article).hidden = contents.files.length <= kRowLimit;
    if (contents.installer || contents.package) showWizard(article, file, contents, reports);
    else find('.wizard', article).remove();
  } else {
    article.querySelectorAll('.content').forEach((section) => section.remove());
    find('.verdict', article).append(make('p', {className: 'note'}, reports.listJsonFault));
  }
  setCopy(find('[data-action=copy]', article), ticket(file, reports, findings, contents));
  find('[data-action=print]', article).onclick = () => print();
  return article;
}

function setCopy(button, text) {
  const tell = () => find('#status').textContent = button.textContent = 'Copied for a ticket';
  const show = () => view('Copy this text', make('pre', {tabIndex: 0}, text));
  button.onclick = () => (navigator.clipboard?.writeText(text) ?? Promise.reject()).then(tell, show);
}

function showDriver(article, {package: driver, files}) {
  const terms = find('.driver', article);
  if (!driver) return fill(terms, [['INF', 'none, so this file carries no driver package']]);
  const [date, version] = driver.version?.split(',') ?? [];
  const named = (isIn) => files.filter(({inCatalog}) => inCatalog === isIn).map(({name}) => name).join(', ');
  fill(terms, [
    ['INF', driver.inf],
    ['Version', version],
    ['Date', date && `${date} (month/day/year)`],
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

// The columns of the table of files: heading, and the value to show and to sort by.
const covered = (inCatalog) => inCatalog === null ? '' : inCatalog ? 'yes' : 'NO';
const signer = ({signer: name, fault}) => (name ?? 'a signer without a name') + (fault ? ' (BROKEN)' : '');
const columns = [
  ['Archive', (file) => file.archive],
  ['Name', (file) => file.name],
  ['Size', (file) => file.size],
  ['Version', (file) => file.version ?? ''],
  ['Kind', (file) => file.kind],
  ['Signer', (file) => (file.signatures ?? []).map(signer).join(', ')],
  ['In catalog', (file) => covered(file.inCatalog)],
];

// Roles for a screen reader: on a narrow screen, the style makes a list of the table.
function filesTable(file, items) {
  const cellOf = (item, [heading, value]) => make('td', {role: 'cell', 'data-label': heading,
    className: heading === 'Size' ? 'number' : heading !== 'Name' && /BROKEN|NO$/.test(value(item)) ? 'bad' : ''},
  value(item).toLocaleString('en'));
  const button = (label, item, act) =>
    make('button', {'aria-label': `${label} ${item.name}`, onclick: () => act(file, item)}, label);
  const rows = items.map((item) => [item, make('tr', {role: 'row'}, ...columns.map((column) => cellOf(item, column)),
    make('td', {role: 'cell', className: 'actions'}, button('View', item, viewItem), button('Save', item, save)))]);
  const body = make('tbody', {role: 'rowgroup'}, ...rows.map(([, row]) => row));
  const headings = columns.map(([heading, value]) => make('th', {role: 'columnheader', scope: 'col',
    className: heading === 'Size' ? 'number' : ''}, make('button', {onclick: ({target}) => {
    const factor = target.parentNode.getAttribute('aria-sort') === 'ascending' ? -1 : 1;
    headings.forEach((other) => other.removeAttribute('aria-sort'));
    target.parentNode.setAttribute('aria-sort', factor === 1 ? 'ascending' : 'descending');
    const compare = (a, b) => typeof a === 'number' ? a - b : a.localeCompare(b, 'en', {numeric: true});
    rows.sort(([a], [b]) => factor * compare(value(a), value(b)));
    body.append(...rows.map(([, row]) => row));
  }}, heading)));
  const head = make('tr', {role: 'row'}, ...headings, make('td', {}));
  return make('table', {role: 'table'}, make('thead', {role: 'rowgroup'}, head), body);
}

const part = (file, item, type) => file.slice(item.fileOffset, item.fileOffset + item.size, type);
const imageOf = (file, item) => {
  const src = URL.createObjectURL(part(file, item, 'image/bmp'));
  return make('img', {src, alt: item.name, onload: () => URL.revokeObjectURL(src)});
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
const encodings = [['UTF-16 text, b', 'utf-16be'], ['UTF-16', 'utf-16le'], ['8-bit', 'windows-1252'], ['', 'utf-8']];
async function textOf(file, item) {
  const [, encoding] = encodings.find(([kind]) => item.kind.startsWith(kind));
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
    const end = item.size > kTextLimit ? '\n\n(Only the first megabyte is shown.)' : '';
    content.push(make('pre', {tabIndex: 0, 'aria-label': `Text of ${item.name}`}, text + end));
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
  find('.note', section).append(
    reports.doubt ? ` The INF ${reports.doubt}, so the texts are a guess.` : '',
    program?.textsKnown === false ? ' The installer has other texts than this page knows, so this is a guess.' : '');

  const parsed = new DOMParser().parseFromString(new TextDecoder().decode(reports.preview), 'text/xml');
  const languages = [...parsed.querySelectorAll('language')];
  if (find('parsererror', parsed)) {
    drawings.append(make('p', {className: 'bad'}, 'The dpinst.xml that the installer writes is not well-formed XML.'));
    languageSelect.closest('p').remove();
    return;
  }
  languageSelect.append(...languages.map((language) => language.getAttribute('code')).map((value) => make('option',
    {value}, value in languageTags ? `${languageNames.of(languageTags[value])} (${value})` : value)));
  const draw = async () => {
    const chosen = languages[languageSelect.selectedIndex];
    const element = (name) => find(name, chosen) ?? find(`:scope > ${name}`, parsed.documentElement);
    const text = (name) => element(name)?.textContent.trim() ?? '';
    const carried = (name) => files.find((item) => item.name.toUpperCase() === name.toUpperCase());
    const watermark = carried(text('watermarkPath'));
    const licence = element('eula')?.getAttribute('path') ?? '';
    const licenceText = await textOf(file, carried(licence)).catch(() => `${licence} cannot be shown.`);
    const page = (className, ...children) => make('figure', {className: 'window', 'aria-label': `${className} page`},
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
  const lines = (title, {removed, added}) => make('div', {className: 'code'}, title,
    ...removed.map((line) => make('p', {className: 'bad'}, `\u2212 ${line}`)),
    ...added.map((line) => make('p', {className: 'good'}, `+ ${line}`)));
  const result = JSON.parse(reports.compareJson);
  groups.append(make('p', {}, result?.alike ? `${before} and ${after} do not differ.` : `From ${before} to ${after}:`));
  if (!result) {
    groups.append(make('p', {className: 'bad'}, reports.compareJsonFault));
  } else {
    group('Installer', changes(result.installer));
    group('Parts of the program that differ', result.programParts);
    const rank = {older: ['For Setup, the driver is older.'], newer: ['For Setup, the driver is newer.']};
    group('Driver package', [...changes(result.package), ...(rank[result.driverVersion] ?? [])]);
    group('Hardware IDs', result.hardwareIds.map((ids) => lines(ids.platform, ids)));
    group('Files removed', result.removed.map(fileText));
    group('Files added', result.added.map(fileText));
    group('Order', result.orderChanged ? ['The files have another order.'] : []);
    group('Files changed', result.changed.map(({name, changes: all}) => `${name}: ${changes(all).join('; ')}`));
    // Most changes are the same in the elements of all languages.
    const runs = result.configuration.map((run) => JSON.stringify(run));
    group('dpinst.xml', [...new Set(runs)].map((run) =>
      lines(counted(runs.filter((other) => other === run).length, 'time'), JSON.parse(run))));
  }
  find('[data-action=swap]', article).onclick = () => open([...files].reverse());
  setCopy(find('[data-action=copy]', article),
    `From ${before} to ${after}:\n\n${reports.compareText ?? reports.compareJsonFault}`);
  return article;
}

input.onchange = () => {
  open([...input.files]);
  input.value = '';
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
addEventListener('beforeprint', () => document.querySelectorAll('.driver details').forEach((all) => all.open = true));
say('ready', 'No file is chosen yet.');
